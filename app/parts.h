// The nine set-part operations, the one road by which a character changes,
// and the face motion that the server decides and the clients follow.
#pragma once
#include <allegro.h>
#include <cstdint>
#include "app/game.h"

void SetCharacter(PlayerClass &player, int32_t number, bool announce);
void SetEyes(PlayerClass &player, int32_t number, bool announce);
void SetEars(PlayerClass &player, int32_t number, bool announce);
void SetNose(PlayerClass &player, int32_t number, bool announce);
void SetMouth(PlayerClass &player, int32_t number, bool announce);
void SetEyebrows(PlayerClass &player, int32_t number, bool announce);
void SetMoustache(PlayerClass &player, int32_t number, bool announce);
void SetFeet(PlayerClass &player, int32_t number, bool announce);
void SetHat(PlayerClass &player, int32_t number, bool announce);

void UpdateFaceMotion(PlayerClass &player);

// What a change tells the network: nothing, an "Update" with the player's ID
// to all clients (server), or a "Report" to the server (client).
class PartPacketClass {
public:
  bool Send = false;
  int Destination = 0;
  unsigned char Type = 0;
  bool WithPlayerId = false;
};
PartPacketClass PartAnnouncement(int mode, bool announce, unsigned char reportType, unsigned char updateType);

// Plays one part's cue at the given volume; the one place that calls
// play_sample, replaceable so that tests can see what would be played.
extern void (*PlayCueSample)(SAMPLE *sample, int volume);
// The cue of a change: a console line when sound is off or the sample missing.
void PlayPartCue(SAMPLE *sample);
