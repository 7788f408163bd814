// DrawPlayer: puts one character together from its record, the body and up
// to eight parts at the body's anchors, and draws it.
#include "character/drawplayer.h"
#include <GL/gl.h>
#include "app/game.h"
#include "app/parts.h"

namespace {

void UpdateAndDraw(ModelClass &model, const float (&anchor)[3], float rx = 0, float ry = 0, float yLift = 0) {
  model.UpdateFrame();
  model.Draw(anchor[0], anchor[1] + yLift, anchor[2], rx, ry, 0);
}

// Part numbers come from the set-part operations, which keep them inside the
// catalogue; a number outside it draws nothing rather than read past the end.
template <class Entry> Entry *EntryAt(std::vector<Entry> &entries, int32_t number) {
  if (number < 0 || (size_t)number >= entries.size()) return nullptr;
  return &entries[(size_t)number];
}

}  // namespace

void DrawPlayer(PlayerClass &player, float x, float y, float z) {
  GameClass &game = Game;
  CharacterEntry *body = player.Character;
  if (body) body->Model.UpdateFrame();
  UpdateFaceMotion(player);
  if (!body) return;

  const bool scaled = body->Scale != 1.0f;
  glPushMatrix();
  if (scaled) {
    glScalef(body->Scale, body->Scale, body->Scale);
    glEnable(GL_NORMALIZE);
  }
  // In a network game the body stands on the row: the bottom of its box on y
  // and its nearest side on z. Alone it is centred on the point.
  if (game.Mode == GAME_MODE_SINGLE)
    glTranslatef(x, y, z);
  else
    glTranslatef(x, y + body->Model.HalfSize[1], z + body->Model.HalfSize[2]);

  glEnable(GL_DEPTH_TEST);
  body->Model.CallFrameList();

  if (PairPartEntry *e = EntryAt(game.Eyes, player.EyesNumber)) {
    UpdateAndDraw(e->LeftModel, body->LeftEye, player.EyesOri[0], player.EyesOri[1]);
    UpdateAndDraw(e->RightModel, body->RightEye, player.EyesOri[0], player.EyesOri[1]);
  }
  if (PairPartEntry *e = EntryAt(game.Ears, player.EarsNumber)) {
    UpdateAndDraw(e->LeftModel, body->LeftEar);
    UpdateAndDraw(e->RightModel, body->RightEar);
  }
  if (SinglePartEntry *e = EntryAt(game.Noses, player.NoseNumber)) UpdateAndDraw(e->Model, body->Nose);
  if (SinglePartEntry *e = EntryAt(game.Mouths, player.MouthNumber)) UpdateAndDraw(e->Model, body->Mouth);
  if (PairPartEntry *e = EntryAt(game.Eyebrows, player.EyebrowsNumber)) {
    UpdateAndDraw(e->LeftModel, body->LeftEyebrow, 0, 0, player.EyebrowsY);
    UpdateAndDraw(e->RightModel, body->RightEyebrow, 0, 0, player.EyebrowsY);
  }
  if (SinglePartEntry *e = EntryAt(game.Moustaches, player.MoustacheNumber)) UpdateAndDraw(e->Model, body->Moustache);
  if (PairPartEntry *e = EntryAt(game.Feet, player.FeetNumber)) {
    UpdateAndDraw(e->LeftModel, body->LeftFoot);
    UpdateAndDraw(e->RightModel, body->RightFoot);
  }
  if (HatEntry *h = EntryAt(game.Hats, player.HatNumber)) {
    // A hat may be open underneath: its inside shows with culling off.
    if (h->BackFaces) glDisable(GL_CULL_FACE);
    const float at[3] = {h->Offset[0] + body->Hat[0], h->Offset[1] + body->Hat[1], h->Offset[2] + body->Hat[2]};
    UpdateAndDraw(h->Model, at);
    if (h->BackFaces) glEnable(GL_CULL_FACE);
  }

  if (scaled) glDisable(GL_NORMALIZE);
  glPopMatrix();
}
