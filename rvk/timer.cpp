// Frame pacing by an elapsed-time clock, and UTC time stamps with hundredths.
#include "rvk/timer.h"
#include <chrono>
#include <cstdlib>
#include <ctime>

// Every TimerClass earns ticks at this rate; RVK_SetFrameRate changes it.
// Until then the program's own rate, so a timer used before RVK_Init still
// paces instead of never answering.
int RVK_FrameRate = RVK_ProgramFrameRate;

// The clock counts from the first time it is read, so the 32-bit millisecond
// reading lasts for weeks before it wraps.
static std::chrono::steady_clock::time_point ClockOrigin() {
  static const std::chrono::steady_clock::time_point origin = std::chrono::steady_clock::now();
  return origin;
}

int32_t RVK_Clock() {
  auto elapsed = std::chrono::steady_clock::now() - ClockOrigin();
  return (int32_t)std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
}

int64_t RVK_ClockMicroseconds() {
  auto elapsed = std::chrono::steady_clock::now() - ClockOrigin();
  return (int64_t)std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count();
}

// ---- TimerClass ----

void TimerClass::Reset() {
  LastClock = RVK_Clock();
  TicksEarned = 0;
  TicksSpent = 0;
}

bool TimerClass::Tick() {
  return RVK_TimerStep(*this, RVK_Clock(), RVK_FrameRate);
}

bool RVK_TimerStep(TimerClass &timer, int32_t now, int rate) {
  timer.TicksEarned += (float)(now - timer.LastClock) / 1000.0f * (float)rate;
  timer.LastClock = now;
  // The clock went backwards: start counting afresh from here.
  if (timer.TicksEarned < timer.TicksSpent) {
    timer.TicksEarned = 0;
    timer.TicksSpent = 0;
  }
  float d = timer.TicksEarned - timer.TicksSpent;
  if (d > 5.0f) {
    // A long stall is forgiven, not caught up.
    timer.TicksEarned = 0;
    timer.TicksSpent = 0;
    return true;
  }
  if (d > 1.0f) {
    timer.TicksSpent += 1.0f;
    // The counts are floats: left to grow, after some hours a millisecond's
    // worth of ticks would fall below their precision and the timer would
    // stop. Taking the same whole number off both keeps their difference.
    if (timer.TicksSpent >= 64.0f) {
      timer.TicksEarned -= 64.0f;
      timer.TicksSpent -= 64.0f;
    }
    return true;
  }
  return false;
}

// ---- Time stamps ----

int32_t TimeStampClass::ToHundredths() const {
  return (((int32_t)Hour * 60 + Minute) * 60 + Second) * 100 + Hundredths;
}

TimeStampClass RVK_TimeStampAt(int64_t milliseconds) {
  std::time_t seconds = (std::time_t)(milliseconds / 1000);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  TimeStampClass stamp;
  stamp.Day = (uint8_t)utc.tm_mday;
  stamp.Month = (uint8_t)(utc.tm_mon + 1);
  stamp.Year = (int16_t)(utc.tm_year + 1900);
  stamp.Hour = (uint8_t)utc.tm_hour;
  stamp.Minute = (uint8_t)utc.tm_min;
  stamp.Second = (uint8_t)utc.tm_sec;
  stamp.Hundredths = (uint8_t)(milliseconds % 1000 / 10);
  return stamp;
}

void RVK_GetTimeStamp(TimeStampClass &stamp) {
  auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  stamp = RVK_TimeStampAt(std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count());
}

bool RVK_TimeElapsedAt(TimeStampClass &stamp, const TimeStampClass &now, int hundredths) {
  if (std::abs(now.ToHundredths() - stamp.ToHundredths()) >= hundredths) {
    stamp = now;
    return true;
  }
  return false;
}

bool RVK_TimeElapsed(TimeStampClass &stamp, int hundredths) {
  TimeStampClass now;
  RVK_GetTimeStamp(now);
  return RVK_TimeElapsedAt(stamp, now, hundredths);
}
