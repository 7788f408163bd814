// The set-part operations: range rules, the network report and the cue of
// each change, and the face motion of every character on screen.
#include "app/parts.h"
#include <cstdlib>
#include "app/config.h"
#include "net/send.h"
#include "rvk/console.h"

// ---- Network and cue ------------------------------------------------------

// A change tells the network: a server sends the "Update" with the player's
// ID to all clients, a client the "Report" to the server, which knows the
// sender from its connection.
static void Announce(const PlayerClass &player, int32_t number, bool announce, unsigned char reportType,
                     unsigned char updateType) {
  if (!announce) return;
  if (Game.Mode == GAME_MODE_SERVER)
    NP_SendPacket(NP_TO_ALL, updateType, "%d,%d", player.PlayerId, number);
  else if (Game.Mode == GAME_MODE_CLIENT)
    NP_SendPacket(NP_TO_SERVER, reportType, "%d", number);
}

int (*PlayCueSample)(const SAMPLE *sample, int volume, int pan, int frequency, int loop) = play_sample;

// The cue of a change: a console line when sound is off or the sample missing.
static void PlayPartCue(SAMPLE *sample) {
  if (!SoundOn) {
    RVK_Message("Not playing sample - sound is disabled");
    return;
  }
  if (!sample) {
    RVK_Message("Not playing sample - sample is NULL");
    return;
  }
  // Pan 0 rather than the centre: the cue comes from the left channel, and
  // the volume goes whole to Allegro even above 255.
  PlayCueSample(sample, Config.SoundVolume, 0, 1000, 0);
}

// ---- The nine operations --------------------------------------------------

void SetCharacter(PlayerClass &player, int32_t number, bool announce) {
  if (number < 0 || number >= (int32_t)Game.Characters.size()) number = 0;
  player.CharacterNumber = number;
  // With no catalogue loaded there is no entry to point at; drawing and the
  // view check for this rather than follow a pointer past the array.
  player.Character = Game.Characters.empty() ? nullptr : &Game.Characters[number];
  for (float &angle : player.EyesOri) angle = 0;
  for (float &angle : player.EyesOriTarget) angle = 0;
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

// One step of 1 towards the target. A fractional target from the wire is
// stepped past and then swung around, as every machine does alike.
static void StepTowards(float &value, float target) {
  if (value < target)
    value += 1.0f;
  else if (value > target)
    value -= 1.0f;
}

// A new eye target on one axis, a whole number from -16 to 15, which a
// server tells its clients.
static void NewEyeTarget(PlayerClass &player, int axis, unsigned char packetType, int (*random)()) {
  float target = (float)(random() % 32 - 16);
  player.EyesOriTarget[axis] = target;
  if (Game.Mode == GAME_MODE_SERVER) NP_SendPacket(NP_TO_ALL, packetType, "%d,%f", player.PlayerId, (double)target);
}

// The eyebrows lift to `y`, and a server tells its clients.
static void LiftEyebrows(PlayerClass &player, float y) {
  player.EyebrowsY = y;
  if (Game.Mode == GAME_MODE_SERVER)
    NP_SendPacket(NP_TO_ALL, NP_UPDATE_EYEBROWS_Y, "%d,%f", player.PlayerId, (double)y);
}

void UpdateFaceMotion(PlayerClass &player, int (*random)()) {
  // A client draws no random numbers: its targets come from the server.
  const bool client = Game.Mode == GAME_MODE_CLIENT;
  if (!client && random() % 150 == 0) NewEyeTarget(player, 0, NP_UPDATE_EYES_ORI_X, random);
  if (!client && random() % 200 == 0) NewEyeTarget(player, 1, NP_UPDATE_EYES_ORI_Y, random);
  StepTowards(player.EyesOri[0], player.EyesOriTarget[0]);
  StepTowards(player.EyesOri[1], player.EyesOriTarget[1]);
  if (!client && random() % 400 == 0) LiftEyebrows(player, 1.5f);
  if (player.EyebrowsY > 0) {
    player.EyebrowsY -= 0.25f;
    // Only a server lifts them a second time.
    if (player.EyebrowsY == 0 && Game.Mode == GAME_MODE_SERVER && random() % 4 == 0) LiftEyebrows(player, 1.0f);
  }
}
