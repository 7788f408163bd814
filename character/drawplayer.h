// DrawPlayer: assembles one character from its record and draws it.
#pragma once

class PlayerClass;
void DrawPlayer(PlayerClass &player, float x, float y, float z);
