// The camera, the projection and the two lights of the game scene.
#pragma once

class CameraClass {
public:
  float Eye[3] = {0, 0, 0};
  float Target[3] = {0, 0, 0};
  float Up[3] = {0, 1, 0};
};

void ApplyCamera(CameraClass &camera);
void SetupLights();
void DisableLights();
// 1/256 of a turn in degrees: the unit of the view and eye angles.
const float DEGREES_PER_STEP = 1.40625f;
// Turns the characters by the idle yaw (degrees) and the view angles.
void RotateScene(float idleYaw, const float (&viewAngles)[3]);

// Where record `index` of `count` players stands in the network row (x; y and z are 0).
float RowPositionX(int count, int index);
// The eye and target of the network modes for `count` players.
void NetworkCamera(int count, CameraClass &camera);
