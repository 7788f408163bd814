// The nine set-part operations, the one road by which a character changes,
// and the face motion that the server decides and the clients follow.
#pragma once
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
