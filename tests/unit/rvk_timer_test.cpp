// The frame timer's catch-up rule, time stamps and the elapsed-time test.
#include <gtest/gtest.h>
#include <chrono>
#include <thread>
#include <tuple>
#include "rvk/timer.h"

// Steps the timer at `now` until it wants to wait; gives the frames let go.
static int Frames(TimerClass &t, int32_t now, int rate) {
  int frames = 0;
  while (RVK_TimerStep(t, now, rate) && frames < 100) frames++;
  return frames;
}

static TimerClass TimerAt(int32_t clock, float earned = 0, float spent = 0) {
  TimerClass t;
  t.LastClock = clock;
  t.TicksEarned = earned;
  t.TicksSpent = spent;
  return t;
}

TEST(Timer, ShortStallsAreCaughtUpLongOnesForgivenBackwardsResets) {
  TimerClass t = TimerAt(1000);
  EXPECT_EQ(Frames(t, 1022, 45), 0);  // 0.99 of a tick
  EXPECT_EQ(Frames(t, 1023, 45), 1);  // 1.035 ticks
  // A tenth of a second more: 4.5 ticks, owed one call at a time.
  EXPECT_EQ(Frames(t, 1123, 45), 4);
  EXPECT_FLOAT_EQ(t.TicksSpent, 5.0f);
  EXPECT_NEAR(t.TicksEarned, 5.535f, 1e-4);

  // A whole second: one frame at once, then the normal rate from there.
  t = TimerAt(0);
  EXPECT_EQ(Frames(t, 1000, 45), 1);
  EXPECT_EQ(std::make_tuple(t.LastClock, t.TicksEarned, t.TicksSpent), std::make_tuple(1000, 0.0f, 0.0f));
  EXPECT_EQ(Frames(t, 1022, 45), 0);
  EXPECT_EQ(Frames(t, 1023, 45), 1);

  // At 1000 ticks a second: exactly one tick owed waits, exactly five are
  // caught up, six are forgiven.
  t = TimerAt(0);
  EXPECT_EQ(Frames(t, 1, 1000), 0);
  t = TimerAt(0);
  EXPECT_EQ(Frames(t, 5, 1000), 4);
  EXPECT_EQ(t.TicksSpent, 4.0f);
  t = TimerAt(0);
  EXPECT_EQ(Frames(t, 6, 1000), 1);
  EXPECT_EQ(t.TicksSpent, 0.0f);

  t = TimerAt(1000, 3, 2);
  EXPECT_EQ(Frames(t, 900, 45), 0);
  EXPECT_EQ(std::make_tuple(t.LastClock, t.TicksEarned, t.TicksSpent), std::make_tuple(900, 0.0f, 0.0f));
}

TEST(Timer, KeepsItsRateForHours) {
  // Ten hours of millisecond readings: 45 ticks a second throughout, to
  // within what float sums lose (a few parts in 100,000). Counts left to grow
  // lose precision until a millisecond's ticks no longer add up at all.
  TimerClass t = TimerAt(0);
  long answered = 0;
  for (int32_t now = 1; now <= 36000000; now++)
    if (RVK_TimerStep(t, now, 45)) answered++;
  EXPECT_NEAR(answered, 1620000, 50);
}

TEST(TimeStamp, HundredthsElapsedEitherWayAndTheRealClocks) {
  TimeStampClass a;
  a.Day = 31, a.Month = 12, a.Year = 2024;
  a.Hour = 23, a.Minute = 59, a.Second = 59, a.Hundredths = 99;
  EXPECT_EQ(a.ToHundredths(), 8639999);
  a.Day = 1;  // the date takes no part
  EXPECT_EQ(a.ToHundredths(), 8639999);

  TimeStampClass stamp, now;
  stamp.Hour = 10, stamp.Minute = 0, stamp.Second = 0, stamp.Hundredths = 0;
  now = stamp;
  // Each answer and where the stamp stands after it; the difference counts
  // either way round.
  const int steps[][3] = {{49, false, 0}, {50, true, 50}, {0, true, 0}};
  for (const auto &s : steps) {
    now.Hundredths = s[0];
    EXPECT_EQ(RVK_TimeElapsedAt(stamp, now, 50), s[1] != 0) << s[0];
    EXPECT_EQ(stamp.Hundredths, s[2]) << s[0];
  }

  int32_t before = RVK_Clock();
  RVK_GetTimeStamp(stamp);
  EXPECT_GE(stamp.Year, 2024);
  EXPECT_FALSE(RVK_TimeElapsed(stamp, 1000));
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  int32_t after = RVK_Clock();
  EXPECT_GE(after - before, 60);
  EXPECT_LT(after - before, 1000);
  EXPECT_TRUE(RVK_TimeElapsed(stamp, 5));
}
