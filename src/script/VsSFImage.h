// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <vector>

#include <Inventor/fields/SoSFImage.h>

#include "script/Room.h"
#include "script/VsField.h"

namespace tessel::script {

struct PictureShape;

/// A picture, as a script's own or over a toolkit field.
class VsSFImage : public VsField {
public:
  using Field = SoSFImage;
  static constexpr Type ofType = Type::sfImage;

  VsSFImage() : own(std::make_unique<SoSFImage>()) {}
  VsSFImage(SoSFImage& field, bool keepsNode) : VsField(&field, keepsNode) {}

  Type type() const override { return ofType; }
  void memberEvaluate(Value& result, Property property, std::string_view name) override;
  void memberAssign(Value& holder, Property property, std::string_view name, const Value& newValue) override;
  void constructField(Arguments arguments) override;

private:
  void postExecute(const Value& current) override;
  SoSFImage& image() const { return own ? *own : *static_cast<SoSFImage*>(liveField()); }
  void resize(int number, std::int32_t value);
  void readPixels(Value& result) const;
  void give(const PictureShape& shape, const std::vector<unsigned char>& bytes);

  std::unique_ptr<SoSFImage> own;
  Room room;
};

}  // namespace tessel::script
