// Euler angles, 3x4 matrices and quaternions for the skeleton code.
#pragma once

void AngleMatrix(const float (&angles)[3], float (&matrix)[3][4]);
void AngleQuaternion(const float (&angles)[3], float (&quaternion)[4]);
void QuaternionMatrix(const float (&quaternion)[4], float (&matrix)[3][4]);
void ConcatTransforms(const float (&first)[3][4], const float (&second)[3][4], float (&out)[3][4]);
void QuaternionSlerp(const float (&p)[4], float (&q)[4], float t, float (&out)[4]);
