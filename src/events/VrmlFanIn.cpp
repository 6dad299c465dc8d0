// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlFanIn.h>

#include <cstdio>

#include <Inventor/engines/SoOutputData.h>
#include <Inventor/fields/SoFieldData.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlMFNode.h>
#include <tessel/core/VrmlNode.h>

#include "core/DeepCopy.h"

SoType VrmlFanIn::classTypeId;

namespace {

SoField* newField(const SoType& type) {
  if (type == SoMFNode::getClassTypeId()) return new VrmlMFNode;
  return static_cast<SoField*>(type.createInstance());
}

}  // namespace

void VrmlFanIn::initClass() {
  constexpr SoType::instantiationMethod neverFromAFile = []() -> void* { return nullptr; };
  classTypeId = SoType::createType(SoEngine::getClassTypeId(), "FanIn", neverFromAFile);
  classTypeId.makeInternal();
}

VrmlFanIn::VrmlFanIn(const SoType& type)
    : fieldType(type),
      inputData(std::make_unique<SoFieldData>()),
      outputData(std::make_unique<SoEngineOutputData>()) {
  isBuiltIn = TRUE;
  output.setContainer(this);
  outputData->addOutput(this, "output", &output, fieldType);
}

// An input that lets go of its source has nobody to tell any more.
VrmlFanIn::~VrmlFanIn() {
  for (auto& input : inputs) input->enableNotify(FALSE);
}

SoType VrmlFanIn::getTypeId() const { return classTypeId; }
// The toolkit compares each new name with all the others, so inputs get theirs when somebody asks.
const SoFieldData* VrmlFanIn::getFieldData() const {
  for (; numNamed < inputs.size(); ++numNamed) {
    char name[32];
    std::snprintf(name, sizeof name, "input%zu", numNamed);
    inputData->addField(const_cast<VrmlFanIn*>(this), name, inputs[numNamed].get());
  }
  return inputData.get();
}

const SoEngineOutputData* VrmlFanIn::getOutputData() const { return outputData.get(); }

VrmlFanIn* VrmlFanIn::feeding(const SoField* to) {
  SoEngineOutput* master = nullptr;
  if (!to->getConnectedEngine(master)) return nullptr;
  SoEngine* engine = master->getContainer();
  return engine && engine->isOfType(classTypeId) ? static_cast<VrmlFanIn*>(engine) : nullptr;
}

SoField* VrmlFanIn::addInput() {
  std::unique_ptr<SoField> input(newField(fieldType));
  VrmlNode::initializeField(input.get());
  if (fieldType == VrmlMFChildren::getClassTypeId()) {
    childLists.push_back(std::make_unique<SoChildList>(nullptr));
    static_cast<VrmlMFChildren*>(input.get())->setValue(childLists.back().get());
  }
  input->setContainer(this);
  inputs.push_back(std::move(input));
  return inputs.back().get();
}

SoField* VrmlFanIn::findInputFrom(const SoField* from) const {
  const auto connectedFrom = [from](const SoField* input) {
    SoField* master = nullptr;
    return input->getConnectedField(master) && master == from;
  };
  // Many sources of one field and many destinations of one source are both common, both at once is not: where
  // the inputs are many, the source's destinations are looked through.
  constexpr std::size_t fewInputs = 16;
  if (inputs.size() <= fewInputs) {
    for (const auto& input : inputs)
      if (connectedFrom(input.get())) return input.get();
    return nullptr;
  }
  SoFieldList destinations;
  from->getForwardConnections(destinations);
  for (int i = 0; i < destinations.getLength(); ++i)
    if (destinations[i]->getContainer() == this) return destinations[i];
  return nullptr;
}

void VrmlFanIn::inputChanged(SoField* input) {
  if (input && input->getContainer() == this) lastChanged = input;
}

// A notification that comes back while our own is under way has gone round a loop of routes: it ends here,
// and the value that it brings is the one that we are sending.
void VrmlFanIn::notify(SoNotList* list) {
  if (!isNotifying()) {
    inherited::notify(list);
    return;
  }
  SoField* input = list->getLastField();
  if (input && input->getContainer() == this) input->setDirty(FALSE);
}

// What the other inputs were sent in the meantime is lost by intent, so only the last one is fetched. If its
// source is gone, its event is gone with it.
void VrmlFanIn::evaluate() {
  if (!lastChanged || !lastChanged->isConnected() || !output.isEnabled()) return;
  for (int i = 0; i < output.getNumConnections(); ++i) output[i]->copyFrom(*lastChanged);
}

SoFieldContainer* VrmlFanIn::copyThroughConnection() const {
  if (SoFieldContainer* copy = tessel::DeepCopy::checkCopy(this)) return copy;
  if (!shouldCopy()) return const_cast<VrmlFanIn*>(this);
  auto* copy = new VrmlFanIn(fieldType);
  for (int i = 0; i < getNumInputs(); ++i) copy->addInput();
  tessel::DeepCopy::enter(this, copy, true);
  copy->copyContents(this, TRUE);
  return copy;
}
