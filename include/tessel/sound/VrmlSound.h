// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/core/VrmlSFNode.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFVec3f.h>

/// Sound: where a sound comes from and how it fades. It is heard fully in an inner ellipsoid and not at all
/// outside an outer one, both with a focus in `location` and stretched along `direction`.
class TESSEL_API VrmlSound : public tessel::NodeClass<VrmlSound, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Sound";
  static std::span<const tessel::FieldSpec> fields();

  VrmlSFNode source;    ///< exposedField, null: an AudioClip or MovieTexture
  SoSFFloat intensity;  ///< exposedField, 1: loudness, 0 to 1
  SoSFFloat priority;   ///< exposedField, 0: kept and written, without effect
  SoSFVec3f location;   ///< exposedField, 0 0 0: the place of the sound
  SoSFVec3f direction;  ///< exposedField, 0 0 1: where it is sent
  SoSFFloat minFront;   ///< exposedField, 1: reach of the inner ellipsoid along the direction
  SoSFFloat maxFront;   ///< exposedField, 10: reach of the outer one
  SoSFFloat minBack;    ///< exposedField, 1: reach of the inner ellipsoid against the direction
  SoSFFloat maxBack;    ///< exposedField, 10: reach of the outer one
  SoSFBool spatialize;  ///< field, TRUE: heard from its place; FALSE: in stereo as it is

  VrmlSound();

  /// Makes the sound fall silent until it is traversed again.
  void silenceSound();

protected:
  ~VrmlSound() override;
};
