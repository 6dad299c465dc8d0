// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <memory>
#include <vector>

#include <Inventor/engines/SoEngine.h>

class SoChildList;
class SoEngineOutputData;
class SoFieldData;

/// Stands between several sources and the one field that they are routed to, and passes on the value of the
/// source that fired last.
///
/// It lives as long as a field is connected from its output. Its inputs only grow in number: one whose source
/// is gone stays where it is, so that the names of the others keep their meaning. It is never in a file.
class TESSEL_API VrmlFanIn : public SoEngine {
  typedef SoEngine inherited;

public:
  static void initClass();
  static SoType getClassTypeId() { return classTypeId; }
  SoType getTypeId() const override;

  /// A fan-in without inputs, for fields of that type.
  explicit VrmlFanIn(const SoType& fieldType);

  /// The fan-in that a field is connected from, null if none.
  static VrmlFanIn* feeding(const SoField* to);

  /// Makes a new input with the neutral value of its type. They are called "input0", "input1", ...
  SoField* addInput();
  /// The first input that is connected from that field, null if none.
  SoField* findInputFrom(const SoField* from) const;
  int getNumInputs() const { return static_cast<int>(inputs.size()); }
  SoField* getInput(int index) const { return inputs[static_cast<std::size_t>(index)].get(); }

  /// The input that notified last, whose value is passed on; null before the first event.
  SoField* getLastChanged() const { return lastChanged; }

  SoEngineOutput output;  ///< "output", of the field type

  void notify(SoNotList* list) override;
  SoFieldContainer* copyThroughConnection() const override;
  const SoFieldData* getFieldData() const override;
  const SoEngineOutputData* getOutputData() const override;

protected:
  ~VrmlFanIn() override;
  void inputChanged(SoField* input) override;
  void evaluate() override;

private:
  static SoType classTypeId;

  SoType fieldType;
  std::unique_ptr<SoFieldData> inputData;
  mutable std::size_t numNamed = 0;  // how many inputs are in `inputData`
  std::unique_ptr<SoEngineOutputData> outputData;
  std::vector<std::unique_ptr<SoChildList>> childLists;  // what inputs of the type of `children` hold
  std::vector<std::unique_ptr<SoField>> inputs;
  SoField* lastChanged = nullptr;
};
