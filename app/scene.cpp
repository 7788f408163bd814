// The camera, the projection and the two lights of the game scene, and the
// arithmetic of the multiplayer row.
#include "app/scene.h"
#include <allegro.h>
#include <GL/gl.h>
#include <GL/glu.h>

float RowPositionX(int count, int index) {
  // 170 units a step, centred on 0, record 0 at the highest x.
  return (170.0f * (float)count - 170.0f) / 2.0f - 170.0f * (float)index;
}

void NetworkCamera(int count, CameraClass &camera) {
  camera.Eye[0] = 0;
  camera.Eye[1] = 50;
  camera.Eye[2] = -150.0f - 100.0f * (float)count;
  camera.Target[0] = 0;
  camera.Target[1] = 50;
  camera.Target[2] = 0;
}

void ApplyCamera(CameraClass &camera) {
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  gluPerspective(48.0, (double)SCREEN_W / (double)SCREEN_H, 1.0, 4000.0);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  gluLookAt(camera.Eye[0], camera.Eye[1], camera.Eye[2], camera.Target[0], camera.Target[1], camera.Target[2],
            camera.Up[0], camera.Up[1], camera.Up[2]);
}

// Placed under the camera's matrix alone, so turning the scene leaves the
// lights where they are. Setting a light leaves the matrix as it is, so
// nothing needs saving around it.
void SetupLights() {
  static const GLfloat position0[4] = {-1.0f, 0.5f, -1.0f, 0.0f};
  static const GLfloat position1[4] = {1.0f, 0.5f, 1.0f, 0.0f};
  static const GLfloat ambient[4] = {0.5f, 0.5f, 0.5f, 1.0f};
  static const GLfloat diffuse[4] = {1.0f, 1.0f, 1.0f, 1.0f};
  static const GLfloat specular[4] = {0.5f, 0.5f, 0.5f, 1.0f};
  glLightfv(GL_LIGHT0, GL_POSITION, position0);
  glLightfv(GL_LIGHT0, GL_AMBIENT, ambient);
  glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
  glLightfv(GL_LIGHT0, GL_SPECULAR, specular);
  glLightfv(GL_LIGHT1, GL_POSITION, position1);
  glLightfv(GL_LIGHT1, GL_AMBIENT, ambient);
  glLightfv(GL_LIGHT1, GL_DIFFUSE, diffuse);
  glLightfv(GL_LIGHT1, GL_SPECULAR, specular);
  glEnable(GL_LIGHTING);
  glEnable(GL_LIGHT0);
  glEnable(GL_LIGHT1);
}

enum { AXIS_X, AXIS_Y, AXIS_Z };

// A turn by `degrees` about one of the world's axes.
static void Turn(float degrees, int axis) {
  glRotatef(degrees, axis == AXIS_X ? 1.0f : 0.0f, axis == AXIS_Y ? 1.0f : 0.0f, axis == AXIS_Z ? 1.0f : 0.0f);
}

// Idle yaw about Y first, then the view angles about X, Y and Z, each in
// 1/256 of a turn: the whole row turns about the world's origin.
void RotateScene(float idleYaw, const float (&viewAngles)[3]) {
  Turn(idleYaw, AXIS_Y);
  Turn(viewAngles[0] * DEGREES_PER_STEP, AXIS_X);
  Turn(viewAngles[1] * DEGREES_PER_STEP, AXIS_Y);
  Turn(viewAngles[2] * DEGREES_PER_STEP, AXIS_Z);
}

void DisableLights() {
  glDisable(GL_LIGHT0);
  glDisable(GL_LIGHT1);
  glDisable(GL_LIGHTING);
}
