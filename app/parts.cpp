// The set-part operations: range rules, the network report and the cue of
// each change, and the face motion of every character on screen.
#include "app/parts.h"
#include <cstdlib>
#include "app/config.h"
#include "net/send.h"
#include "rvk/console.h"

// ---- Network and cue ------------------------------------------------------

PartPacketClass PartAnnouncement(int mode, bool announce, unsigned char reportType, unsigned char updateType) {
  PartPacketClass packet;
  if (!announce) return packet;
  if (mode == GAME_MODE_SERVER) {
    packet.Send = true;
    packet.Destination = NP_TO_ALL;
    packet.Type = updateType;
    packet.WithPlayerId = true;
  } else if (mode == GAME_MODE_CLIENT) {
    // The server knows the sender from its connection: no ID goes with it.
    packet.Send = true;
    packet.Destination = NP_TO_SERVER;
    packet.Type = reportType;
  }
  return packet;
}

static void Announce(const PlayerClass &player, int32_t number, bool announce, unsigned char reportType,
                     unsigned char updateType) {
  PartPacketClass packet = PartAnnouncement(Game.Mode, announce, reportType, updateType);
  if (!packet.Send) return;
  if (packet.WithPlayerId)
    NP_SendPacket(packet.Destination, packet.Type, "%d,%d", player.PlayerId, number);
  else
    NP_SendPacket(packet.Destination, packet.Type, "%d", number);
}

// Pan 0 rather than the centre: the cue comes from the left channel, and the
// volume goes whole to play_sample even above 255.
static void PlayWithAllegro(SAMPLE *sample, int volume) { play_sample(sample, volume, 0, 1000, 0); }

void (*PlayCueSample)(SAMPLE *sample, int volume) = PlayWithAllegro;

void PlayPartCue(SAMPLE *sample) {
  if (!SoundOn) {
    RVK_Message("Not playing sample - sound is disabled");
    return;
  }
  if (!sample) {
    RVK_Message("Not playing sample - sample is NULL");
    return;
  }
  PlayCueSample(sample, Config.SoundVolume);
}

// ---- The nine operations --------------------------------------------------

void SetCharacter(PlayerClass &player, int32_t number, bool announce) {
  if (number < 0 || number >= (int32_t)Game.Characters.size()) number = 0;
  player.CharacterNumber = number;
  // With no catalogue loaded there is no entry to point at; drawing and the
  // view check for this rather than follow a pointer past the array.
  player.Character = Game.Characters.empty() ? nullptr : &Game.Characters[number];
  for (int i = 0; i < 3; i++) player.EyesOri[i] = player.EyesOriTarget[i] = 0;
  player.EyebrowsY = 0;
  Announce(player, number, announce, NP_REPORT_CHARACTER, NP_UPDATE_CHARACTER);
  PlayPartCue(Game.CharacterSample);
}

// The eight parts share one rule: -1 takes the part away, anything else must
// name an entry of the local catalogue or the whole call is dropped.
static void SetPart(PlayerClass &player, int32_t PlayerClass::*field, size_t catalogueSize, int32_t number,
                    bool announce, unsigned char reportType, SAMPLE *sample) {
  if (number < -1 || (number >= 0 && (size_t)number >= catalogueSize)) return;
  player.*field = number;
  Announce(player, number, announce, reportType, (unsigned char)(reportType + NP_REPORT_TO_UPDATE));
  PlayPartCue(sample);
}

void SetEyes(PlayerClass &player, int32_t number, bool announce) {
  SetPart(player, &PlayerClass::EyesNumber, Game.Eyes.size(), number, announce, NP_REPORT_EYES, Game.EyesSample);
}
void SetEars(PlayerClass &player, int32_t number, bool announce) {
  SetPart(player, &PlayerClass::EarsNumber, Game.Ears.size(), number, announce, NP_REPORT_EARS, Game.EarsSample);
}
void SetNose(PlayerClass &player, int32_t number, bool announce) {
  SetPart(player, &PlayerClass::NoseNumber, Game.Noses.size(), number, announce, NP_REPORT_NOSE, Game.NoseSample);
}
void SetMouth(PlayerClass &player, int32_t number, bool announce) {
  SetPart(player, &PlayerClass::MouthNumber, Game.Mouths.size(), number, announce, NP_REPORT_MOUTH, Game.MouthSample);
}
void SetEyebrows(PlayerClass &player, int32_t number, bool announce) {
  SetPart(player, &PlayerClass::EyebrowsNumber, Game.Eyebrows.size(),
          number, announce, NP_REPORT_EYEBROWS, Game.EyebrowsSample);
}
void SetMoustache(PlayerClass &player, int32_t number, bool announce) {
  SetPart(player, &PlayerClass::MoustacheNumber, Game.Moustaches.size(),
          number, announce, NP_REPORT_MOUSTACHE, Game.MoustacheSample);
}
void SetFeet(PlayerClass &player, int32_t number, bool announce) {
  SetPart(player, &PlayerClass::FeetNumber, Game.Feet.size(), number, announce, NP_REPORT_FEET, Game.FeetSample);
}
void SetHat(PlayerClass &player, int32_t number, bool announce) {
  SetPart(player, &PlayerClass::HatNumber, Game.Hats.size(), number, announce, NP_REPORT_HAT, Game.HatSample);
}

// ---- Face motion ----------------------------------------------------------

// One step of 1 towards the target; a gap of less than a step (possible only
// with a fractional target from the wire) is closed at once instead of
// leaving the eye to swing around its target for ever.
static void StepTowards(float &value, float target) {
  if (value < target)
    value = (target - value < 1.0f) ? target : value + 1.0f;
  else if (value > target)
    value = (value - target < 1.0f) ? target : value - 1.0f;
}

void UpdateFaceMotion(PlayerClass &player) {
  const bool client = Game.Mode == GAME_MODE_CLIENT;
  const bool server = Game.Mode == GAME_MODE_SERVER;
  if (!client) {
    if (rand() % 150 == 0) {
      player.EyesOriTarget[0] = (float)(rand() % 32 - 16);
      if (server) NP_SendPacket(NP_TO_ALL, NP_UPDATE_EYES_ORI_X,
                                "%d,%f", player.PlayerId, (double)player.EyesOriTarget[0]);
    }
    if (rand() % 200 == 0) {
      player.EyesOriTarget[1] = (float)(rand() % 32 - 16);
      if (server) NP_SendPacket(NP_TO_ALL, NP_UPDATE_EYES_ORI_Y,
                                "%d,%f", player.PlayerId, (double)player.EyesOriTarget[1]);
    }
  }
  StepTowards(player.EyesOri[0], player.EyesOriTarget[0]);
  StepTowards(player.EyesOri[1], player.EyesOriTarget[1]);
  if (!client && rand() % 400 == 0) {
    player.EyebrowsY = 1.5f;
    if (server) NP_SendPacket(NP_TO_ALL, NP_UPDATE_EYEBROWS_Y, "%d,%f", player.PlayerId, 1.5);
  }
  if (player.EyebrowsY > 0) {
    player.EyebrowsY -= 0.25f;
    if (player.EyebrowsY == 0 && server && rand() % 4 == 0) {
      player.EyebrowsY = 1.0f;
      NP_SendPacket(NP_TO_ALL, NP_UPDATE_EYEBROWS_Y, "%d,%f", player.PlayerId, 1.0);
    }
  }
}
