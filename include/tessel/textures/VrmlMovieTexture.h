// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/textures/VrmlTexture.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFTime.h>

/// MovieTexture: a texture that shows a movie, and the source of its sound. Times are absolute, in seconds.
class TESSEL_API VrmlMovieTexture : public tessel::NodeClass<VrmlMovieTexture, VrmlTexture> {
public:
  static constexpr const char* fileFormatName = "MovieTexture";
  static std::span<const tessel::FieldSpec> fields();

  SoSFFloat speed;             ///< exposedField, 1: how fast; negative: backwards
  SoSFBool loop;               ///< exposedField, FALSE: whether the movie begins again at its end
  SoSFTime startTime;          ///< exposedField, 0: when to start
  SoSFTime stopTime;           ///< exposedField, 0: when to stop; no stop if it is not after the start
  SoSFFloat duration_changed;  ///< eventOut, -1: length of the movie in seconds; -1: not known
  SoSFBool isActive;           ///< eventOut, FALSE: the movie plays

  static void initClass();

  VrmlMovieTexture();

  /// Asks for nothing.
  void requestImageFromURL() override;

protected:
  ~VrmlMovieTexture() override;
};
