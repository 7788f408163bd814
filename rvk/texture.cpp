// GL textures made from Allegro bitmaps, the icon table, and the textured
// quad that draws them.
#include "rvk/texture.h"
#include <alleggl.h>
#include <GL/gl.h>
#include <algorithm>
#include <vector>
#include "rvk/core.h"
#include "rvk/draw.h"
#include "rvk/filecheck.h"

// ---- TextureClass ----

void TextureClass::CreateFromBitmap(BITMAP *bitmap) {
  BITMAP *placeholder = nullptr;
  if (bitmap == nullptr) {
    // A picture that is missing still shows as something: white with a red
    // diagonal, so the gap is plain to see.
    placeholder = create_bitmap(32, 32);
    if (placeholder == nullptr) return;
    clear_to_color(placeholder, makecol(255, 255, 255));
    line(placeholder, 0, 0, 31, 31, makecol(230, 0, 0));
    bitmap = placeholder;
  }
  TextureName = allegro_gl_make_masked_texture(bitmap);
  Width = bitmap->w;
  Height = bitmap->h;
  CentreX = Width / 2;
  CentreY = Height / 2;
  // AllegroGL answers 0 when it could make no texture; there is then nothing
  // to draw or free.
  Loaded = TextureName != 0;
  if (placeholder != nullptr) destroy_bitmap(placeholder);
}

bool TextureClass::Load(const char *file) {
  return Load(file, false);
}

bool TextureClass::Load(const char *file, bool keepBitmap) {
  if (file == nullptr) file = "";
  BITMAP *bitmap = RVK_LoadBitmap(RVK_NativePath(file).c_str());
  if (bitmap == nullptr) {
    LastError = std::string("Unable to load bitmap from ") + file;
    return false;
  }
  CreateFromBitmap(bitmap);
  if (keepBitmap) {
    SourceBitmap = bitmap;
    HasBitmap = true;
  } else {
    destroy_bitmap(bitmap);
  }
  return true;
}

void TextureClass::Free() {
  if (Loaded) {
    GLuint name = TextureName;
    glDeleteTextures(1, &name);
    Loaded = false;
  }
  // A kept bitmap goes even when its texture could not be made, so nothing
  // this value owns outlives it.
  if (HasBitmap) {
    destroy_bitmap(SourceBitmap);
    SourceBitmap = nullptr;
    HasBitmap = false;
  }
}

// ---- Drawing ----

void RVK_DrawTextureScaled(TextureClass texture, int x, int y, int w, int h, float angle, bool masked, int alpha) {
  int hw = w / 2;
  int hh = h / 2;
  glPushMatrix();
  glEnable(GL_TEXTURE_2D);
  if (masked) {
    glAlphaFunc(GL_GREATER, 0.5f);
    glEnable(GL_ALPHA_TEST);
  }
  // Unblended at full alpha: drawn unmasked, a transparent texel shows black.
  bool blended = alpha < RVK_Opaque;
  if (blended) RVK_BeginBlend(RVK_Palette.White, alpha);
  glTranslated(x + hw, y + hh, 0.0);
  glRotatef(angle * 1.40625f, 0.0f, 0.0f, 1.0f);
  glBindTexture(GL_TEXTURE_2D, texture.TextureName);
  glBegin(GL_QUADS);
  glTexCoord2f(0, 0);
  glVertex2i(-hw, hh);
  glTexCoord2f(1, 0);
  glVertex2i(hw, hh);
  glTexCoord2f(1, 1);
  glVertex2i(hw, -hh);
  glTexCoord2f(0, 1);
  glVertex2i(-hw, -hh);
  glEnd();
  // The colour's alpha would otherwise stay behind and make the next masked
  // texture fail its alpha test.
  if (blended) RVK_EndBlend();
  if (masked) glDisable(GL_ALPHA_TEST);
  glDisable(GL_TEXTURE_2D);
  glPopMatrix();
}

void RVK_DrawTexture(TextureClass texture, int x, int y, float angle, bool masked, int alpha) {
  RVK_DrawTextureScaled(texture, x, y, texture.Width, texture.Height, angle, masked, alpha);
}

// ---- Icon table ----

static std::vector<IconClass> Icons;

void RVK_AddIcon(BITMAP *bitmap, const char *name) {
  IconClass icon;
  icon.CreateFromBitmap(bitmap);
  icon.Name = name != nullptr ? name : "";
  Icons.push_back(icon);
}

int RVK_FindIcon(const char *name) {
  if (name == nullptr) return 0;
  auto found = std::find_if(Icons.begin(), Icons.end(), [&](const IconClass &icon) { return icon.Name == name; });
  return found != Icons.end() ? (int)(found - Icons.begin()) : 0;
}

TextureClass RVK_GetIcon(const char *name) {
  return RVK_GetIconByIndex(RVK_FindIcon(name));
}

TextureClass RVK_GetIconByIndex(int index) {
  // An index outside the table gets the default icon, like an unknown name;
  // with no table at all there is only an empty value to give.
  if ((size_t)index >= Icons.size()) index = 0;
  if (Icons.empty()) return TextureClass();
  return Icons[index];
}

TextureClass RVK_GetDefaultIcon() {
  return RVK_GetIconByIndex(0);
}

int RVK_GetIconCount() {
  return (int)Icons.size();
}

void RVK_ClearIcons() {
  Icons.clear();
}

std::string RVK_NativePath(const char *path) {
  std::string result = path != nullptr ? path : "";
  for (char &c : result)
    if (c == '\\') c = '/';
  return result;
}
