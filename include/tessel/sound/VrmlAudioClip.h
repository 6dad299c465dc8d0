// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFString.h>
#include <Inventor/fields/SoSFTime.h>

/// AudioClip: a sound file, and when it plays. Times are absolute, in seconds.
class TESSEL_API VrmlAudioClip : public tessel::NodeClass<VrmlAudioClip, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "AudioClip";
  static std::span<const tessel::FieldSpec> fields();

  SoMFString url;             ///< exposedField, one empty string: alternatives, the best first
  SoSFBool loop;              ///< exposedField, FALSE: whether the sound begins again at its end
  SoSFTime startTime;         ///< exposedField, 0: when to start
  SoSFTime stopTime;          ///< exposedField, 0: when to stop; no stop if it is not after the start
  SoSFFloat pitch;            ///< exposedField, 1: how fast, and so how high
  SoSFTime duration_changed;  ///< eventOut, 0: length of the sound in seconds, at pitch 1
  SoSFBool isActive;          ///< eventOut, FALSE: the clip plays
  SoSFString description;     ///< exposedField, empty: what a host may show of the sound

  VrmlAudioClip();

protected:
  ~VrmlAudioClip() override;
};
