// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/engines/SoFieldConverter.h>

#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlMFNode.h>

/// Sends the nodes of a SoMFNode field into child lists, at the moment of the notification: who traverses a
/// child list does not ask its field first.
class ConvertMFNodeToMFChildren : public SoFieldConverter {
  typedef SoFieldConverter inherited;
  SO_ENGINE_HEADER(ConvertMFNodeToMFChildren);

public:
  static void initClass();
  ConvertMFNodeToMFChildren();

  VrmlMFNode input;
  SoEngineOutput output;

  SoField* getInput(SoType) override { return &input; }
  SoEngineOutput* getOutput(SoType) override { return &output; }
  void notify(SoNotList* list) override;

protected:
  ~ConvertMFNodeToMFChildren() override;

private:
  void evaluate() override {}
  void evaluateFromNotify();

  bool converting = false;
};

/// Gives the nodes of a child list to SoMFNode fields, a VrmlNULL as null.
class ConvertMFChildrenToMFNode : public SoFieldConverter {
  typedef SoFieldConverter inherited;
  SO_ENGINE_HEADER(ConvertMFChildrenToMFNode);

public:
  static void initClass();
  ConvertMFChildrenToMFNode();

  VrmlMFChildren input;
  SoEngineOutput output;

  SoField* getInput(SoType) override { return &input; }
  SoEngineOutput* getOutput(SoType) override { return &output; }

protected:
  ~ConvertMFChildrenToMFNode() override;

private:
  void evaluate() override;
};
