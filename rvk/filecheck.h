// Files from outside the program are checked here before Allegro reads them.
// Its picture and sound loaders trust the sizes in a file's header, and a
// damaged file makes them write past a bitmap or allocate whatever the header
// asks for; its configuration reader hangs on some byte sequences that are not
// UTF-8 and writes some lines back in a form that it reads differently.
// Every picture, sound and configuration file is opened through
// RVK_LoadBitmap, RVK_LoadSample and RVK_SetConfigFile.
#pragma once
#include <allegro.h>
#include <cstddef>
#include <cstdint>
#include <string>

// Why these bytes can't be handed to Allegro as a TGA picture or a WAV sound;
// empty when they can.
std::string RVK_CheckTga(const uint8_t *data, size_t size);
std::string RVK_CheckWav(const uint8_t *data, size_t size);
// Why these bytes can't be handed to Allegro as a configuration file (UTF-8
// text that it reads as it writes); empty when they can.
std::string RVK_CheckConfigText(const uint8_t *data, size_t size);

// The same for a file, which must also be readable and not too big; a picture
// must be a TGA file.
std::string RVK_CheckPictureFile(const char *path);
std::string RVK_CheckSoundFile(const char *path);
// Empty for a missing file, which Allegro reads as an empty configuration.
std::string RVK_CheckConfigFile(const char *path);

// load_bitmap and load_wav on files that pass the checks; null otherwise.
BITMAP *RVK_LoadBitmap(const char *path);
SAMPLE *RVK_LoadSample(const char *path);
// set_config_file on a file that passes the check. Otherwise the error log
// says why, and an empty configuration in memory takes its place: reading
// gives the defaults, and writing leaves the file as it is.
void RVK_SetConfigFile(const char *path);
