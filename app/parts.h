// The nine set-part operations, the one road by which a character changes,
// and the face motion that the server decides and the clients follow.
#pragma once
#include <allegro.h>
#include <cstdint>
#include <cstdlib>
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

// Draws its random numbers from `random`, rand in the game.
void UpdateFaceMotion(PlayerClass &player, int (*random)() = std::rand);

// Allegro's play_sample, through which every cue is played; replaceable so
// that tests can see what would be played.
extern int (*PlayCueSample)(const SAMPLE *sample, int volume, int pan, int frequency, int loop);
