// GL textures made from Allegro bitmaps, the icon table, and textured quads.
#pragma once
#include <allegro.h>
#include <cstdint>
#include <string>

// A plain value naming one GL texture; copies share the texture, and only
// Free (on one copy, by the owner) releases it.
class TextureClass {
public:
  uint32_t TextureName = 0;
  BITMAP *SourceBitmap = nullptr;
  bool HasBitmap = false;
  int32_t Width = 0;
  int32_t Height = 0;
  int32_t CentreX = 0;
  int32_t CentreY = 0;
  bool Loaded = false;
  std::string LastError;

  void CreateFromBitmap(BITMAP *bitmap);
  bool Load(const char *file);
  bool Load(const char *file, bool keepBitmap);
  void Free();
};

class IconClass : public TextureClass {
public:
  std::string Name;
};

void RVK_DrawTextureScaled(TextureClass texture, int x, int y, int w, int h, float angle, bool masked, int alpha);
void RVK_DrawTexture(TextureClass texture, int x, int y, float angle, bool masked, int alpha);

void RVK_AddIcon(BITMAP *bitmap, const char *name);
int RVK_FindIcon(const char *name);
TextureClass RVK_GetIcon(const char *name);
TextureClass RVK_GetIconByIndex(int index);
TextureClass RVK_GetDefaultIcon();
// Number of entries in the icon table, entry 0 (the default icon) included.
int RVK_GetIconCount();
// Empties the icon table without deleting GL textures (RVK_Shutdown).
void RVK_ClearIcons();

// Maps the backslashes of a data path to '/', so "data\\none.tga" opens on
// systems where '\\' is no separator.
std::string RVK_NativePath(const char *path);
