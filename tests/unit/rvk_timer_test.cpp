// The frame timer's catch-up rule, time stamps and the elapsed-time test.
#include <gtest/gtest.h>
#include <chrono>
#include <thread>
#include "rvk/timer.h"

static TimerClass TimerAt(int32_t clock) {
  TimerClass t;
  t.LastClock = clock;
  return t;
}

TEST(Timer, ShortStallIsCaughtUpByFramesWithoutWaiting) {
  TimerClass t = TimerAt(1000);
  EXPECT_FALSE(RVK_TimerStep(t, 1022, 45));  // 0.99 of a tick
  EXPECT_TRUE(RVK_TimerStep(t, 1023, 45));   // 1.035 ticks
  EXPECT_FLOAT_EQ(t.TicksSpent, 1.0f);
  // A tenth of a second more: 4.5 ticks, owed one call at a time.
  int answered = 0;
  while (RVK_TimerStep(t, 1123, 45)) answered++;
  EXPECT_EQ(answered, 4);
  EXPECT_FLOAT_EQ(t.TicksSpent, 5.0f);
  EXPECT_NEAR(t.TicksEarned, 5.535f, 1e-4);
}

TEST(Timer, LongStallResetsAndFramesGoOnAtTheNormalRate) {
  TimerClass t = TimerAt(0);
  EXPECT_TRUE(RVK_TimerStep(t, 1000, 45));
  EXPECT_EQ(t.LastClock, 1000);
  EXPECT_EQ(t.TicksEarned, 0.0f);
  EXPECT_EQ(t.TicksSpent, 0.0f);
  EXPECT_FALSE(RVK_TimerStep(t, 1022, 45));
  EXPECT_TRUE(RVK_TimerStep(t, 1023, 45));
  EXPECT_FALSE(RVK_TimerStep(t, 1023, 45));
}

TEST(Timer, BoundariesOfTheRule) {
  // At 1000 ticks a second one millisecond is one tick.
  TimerClass t = TimerAt(0);
  EXPECT_FALSE(RVK_TimerStep(t, 1, 1000));  // exactly one tick owed: wait
  t = TimerAt(0);
  int answered = 0;
  while (RVK_TimerStep(t, 5, 1000)) answered++;  // exactly five: caught up, not forgiven
  EXPECT_EQ(answered, 4);
  EXPECT_EQ(t.TicksSpent, 4.0f);
  t = TimerAt(0);
  EXPECT_TRUE(RVK_TimerStep(t, 6, 1000));  // six: forgiven
  EXPECT_EQ(t.TicksSpent, 0.0f);
}

TEST(Timer, ClockGoingBackwardsResets) {
  TimerClass t = TimerAt(1000);
  t.TicksEarned = 3;
  t.TicksSpent = 2;
  EXPECT_FALSE(RVK_TimerStep(t, 900, 45));
  EXPECT_EQ(t.LastClock, 900);
  EXPECT_EQ(t.TicksEarned, 0.0f);
  EXPECT_EQ(t.TicksSpent, 0.0f);
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

TEST(TimeStamp, HundredthsAndElapsed) {
  TimeStampClass a;
  a.Day = 31, a.Month = 12, a.Year = 2024;
  a.Hour = 23, a.Minute = 59, a.Second = 59, a.Hundredths = 99;
  EXPECT_EQ(a.ToHundredths(), 8639999);
  a.Day = 1;  // the date takes no part
  EXPECT_EQ(a.ToHundredths(), 8639999);

  TimeStampClass stamp, now;
  stamp.Hour = 10, stamp.Minute = 0, stamp.Second = 0, stamp.Hundredths = 0;
  now = stamp;
  now.Hundredths = 49;
  EXPECT_FALSE(RVK_TimeElapsedAt(stamp, now, 50));
  EXPECT_EQ(stamp.Hundredths, 0);
  now.Hundredths = 50;
  EXPECT_TRUE(RVK_TimeElapsedAt(stamp, now, 50));
  EXPECT_EQ(stamp.Hundredths, 50);
  // The difference counts either way round.
  now.Hundredths = 0;
  EXPECT_TRUE(RVK_TimeElapsedAt(stamp, now, 50));
  EXPECT_EQ(stamp.Hundredths, 0);
}

TEST(TimeStamp, ClocksMeasureElapsedTime) {
  int32_t before = RVK_Clock();
  TimeStampClass stamp;
  RVK_GetTimeStamp(stamp);
  EXPECT_GE(stamp.Year, 2024);
  EXPECT_FALSE(RVK_TimeElapsed(stamp, 1000));
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  int32_t after = RVK_Clock();
  EXPECT_GE(after - before, 60);
  EXPECT_LT(after - before, 1000);
  EXPECT_TRUE(RVK_TimeElapsed(stamp, 5));
}
