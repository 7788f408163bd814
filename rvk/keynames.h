// Short names of Allegro key codes and mouse inputs, for button tooltips.
#pragma once

const char *RVK_GetKeyName(int code);
