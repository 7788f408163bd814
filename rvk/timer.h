// Frame pacing and wall-clock time stamps for the RVK GUI library.
#pragma once
#include <cstdint>

// Paces frames: ticks are earned at the library's frame rate by the elapsed
// milliseconds and spent one per answered Tick.
class TimerClass {
public:
  int32_t LastClock = 0;  // milliseconds, from RVK_Clock()
  float TicksEarned = 0;
  float TicksSpent = 0;

  void Reset();
  bool Tick();
};

// The pure step of TimerClass::Tick, so the catch-up rule can be tested with
// made-up clock readings: `now` in milliseconds, `rate` in ticks per second.
bool RVK_TimerStep(TimerClass &timer, int32_t now, int rate);

// A UTC date and time with hundredths.
class TimeStampClass {
public:
  uint8_t Day = 0;
  uint8_t Month = 0;
  int16_t Year = 0;
  uint8_t Hour = 0;
  uint8_t Minute = 0;
  uint8_t Second = 0;
  uint8_t Hundredths = 0;

  int32_t ToHundredths() const;
};

// Milliseconds of a monotonic clock that measures elapsed time.
int32_t RVK_Clock();
// Microseconds of the same clock, for the frame trace.
int64_t RVK_ClockMicroseconds();
// The UTC time stamp of a moment given in milliseconds since 1970.
TimeStampClass RVK_TimeStampAt(int64_t milliseconds);
void RVK_GetTimeStamp(TimeStampClass &stamp);
bool RVK_TimeElapsed(TimeStampClass &stamp, int hundredths);
// The pure part of RVK_TimeElapsed: compares against a given present moment.
bool RVK_TimeElapsedAt(TimeStampClass &stamp, const TimeStampClass &now, int hundredths);

// The rate shared by every TimerClass, in ticks per second.
extern int RVK_FrameRate;
// The rate the program runs at: frames a second.
const int RVK_ProgramFrameRate = 45;
