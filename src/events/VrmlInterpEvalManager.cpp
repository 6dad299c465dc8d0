// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlInterpEvalManager.h>

#include <map>
#include <memory>

#include <Inventor/engines/SoOutputData.h>
#include <Inventor/fields/SoFieldData.h>
#include <Inventor/fields/SoSFFloat.h>

#include <tessel/events/VrmlInterpolator.h>

SoType VrmlInterpEvalManager::classTypeId;

void VrmlInterpEvalManager::initClass() {
  classTypeId = SoType::createType(SoEngine::getClassTypeId(), "InterpEvalManager", createInstance);
  classTypeId.makeInternal();
}

void* VrmlInterpEvalManager::createInstance() { return new VrmlInterpEvalManager; }

VrmlInterpEvalManager::VrmlInterpEvalManager()
    : VrmlInterpEvalManager(nullptr, SoSFFloat::getClassTypeId()) {}

// The table of outputs tells how far the output lies from the engine's beginning, and of which type it is.
VrmlInterpEvalManager::VrmlInterpEvalManager(VrmlInterpolator* of, SoType type)
    : interpolator(of), fieldType(type) {
  // Never destroyed: engines may outlive static objects.
  static auto& tables = *new std::map<SbName, std::unique_ptr<SoEngineOutputData>>;
  isBuiltIn = TRUE;
  output.setContainer(this);
  auto& table = tables[fieldType.getName()];
  if (!table) {
    table = std::make_unique<SoEngineOutputData>();
    table->addOutput(this, "output", &output, fieldType);
  }
  outputData = table.get();
}

VrmlInterpEvalManager::~VrmlInterpEvalManager() = default;

SoType VrmlInterpEvalManager::getTypeId() const { return classTypeId; }

const SoFieldData* VrmlInterpEvalManager::getFieldData() const {
  static const SoFieldData noInputs;
  return &noInputs;
}

const SoEngineOutputData* VrmlInterpEvalManager::getOutputData() const { return outputData; }

void VrmlInterpEvalManager::evaluate() {
  if (interpolator && output.isEnabled()) interpolator->evaluate();
}
