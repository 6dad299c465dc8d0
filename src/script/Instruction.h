// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

namespace tessel::script {

/// What the interpreter can do. `dst`, `a`, `b`, `c` are places in the window of a run unless told otherwise; a
/// target is the index of an instruction. Except where told, an operation that can't be done reports why and leaves
/// `dst` as it was, and an operand without a value leaves it so in silence.
enum class Op : std::uint8_t {
  // double arithmetic; each has a twin that also assigns the result to variable `c`
  add,
  subtract,
  multiply,
  divide,
  remainder,
  bitAnd,
  bitOr,
  bitXor,
  shiftLeft,
  shiftRight,
  shiftRightSigned,
  addAssign,
  subtractAssign,
  multiplyAssign,
  divideAssign,
  remainderAssign,
  bitAndAssign,
  bitOrAssign,
  bitXorAssign,
  shiftLeftAssign,
  shiftRightAssign,
  shiftRightSignedAssign,
  // comparison; the twin, which stands before jumpUnless, makes that jump too
  equal,
  notEqual,
  less,
  lessEqual,
  greater,
  greaterEqual,
  equalUnless,
  notEqualUnless,
  lessUnless,
  lessEqualUnless,
  greaterUnless,
  greaterEqualUnless,
  negate,
  complement,
  logicalNot,
  andLeft,
  orLeft,  ///< decides by `a`: `dst` is set and it goes on at target `b`; or does nothing
  andRight,
  orRight,            ///< dst = both operands' truth
  increment,          ///< dst = a + aux; goes on at target `b` if `a` is no number
  incrementVariable,  ///< variable a += aux; dst = the new value if c, else the old one; if there is none, goes
                      ///< on at target `b`, if that is not -1
  keep,               ///< dst = a, as it is now
  assign,         ///< variable dst = a; if b >= 0, place b becomes the variable's value; nothing without a
  copy,           ///< dst = a, as a handle
  copyResult,     ///< dst.setValue(a)
  setNone,        ///< dst = nothing
  checkVariable,  ///< reports if variable `a` is undefined
  checkIndex,     ///< goes on at target `b` if `a` is no number, after a report
  loadGlobal,     ///< dst = global a
  storeGlobal,    ///< global dst = a; b as in assign
  jump,           ///< to target `b`
  jumpBack,       ///< the same, which counts as `aux` steps
  jumpUnless,     ///< to target `b` if `a` is false, to `c` if it is no number
  jumpIfNone,     ///< to target `b` if `a` is nothing
  passArgument,   ///< new variable dst = a; to target `b` if `a` is nothing
  call,        ///< dst = function a, with c arguments from place b; then goes on behind the next instruction
  giveBack,    ///< ends the run with the value a
  end,         ///< ends the run without a value
  getElement,  ///< dst = a[b]; `c` is b, or with aux a variable, reported before if undefined
  setElement,  ///< a[b] = c, dst = what was assigned, or nothing if that can't be done; aux: `isChecked`
  getMember,   ///< dst = a.property; b: the member access; aux: the property
  readAgain,  ///< dst = the number that is now in the field of node a, if dst is a number; b: the member access
  setMember,       ///< a.property = c, like getMember; aux: also `isChecked`, `isUnused`
  setMathMember,   ///< reports
  acceptsCall,     ///< goes on at target `b` unless object `a` takes method `aux` with `c` arguments
  callMethod,      ///< dst = a.method aux(c arguments from argument list b)
  callMath,        ///< dst = Math.method aux(c arguments from argument list b)
  mathProperty,    ///< dst = Math.property aux
  callBrowser,     ///< dst = Browser.method aux(c arguments from argument list b)
  allocField,      ///< dst = a new value of type `aux`
  constructField,  ///< fills dst from c arguments in argument list b
  appendElement,   ///< appends a to dst; goes on at target `b` if it does not fit
  parseInt,        ///< dst = parseInt(c arguments from argument list b)
  parseFloat,      ///< dst = parseFloat(...)
};

/// The twin of an arithmetic operation that assigns too, and of a comparison that jumps too.
constexpr Op assigningTwin(Op op) {
  return static_cast<Op>(static_cast<int>(op) - static_cast<int>(Op::add) + static_cast<int>(Op::addAssign));
}
constexpr Op jumpingTwin(Op op) {
  return static_cast<Op>(static_cast<int>(op) - static_cast<int>(Op::equal) +
                         static_cast<int>(Op::equalUnless));
}

// What `aux` of setMember and setElement tells, above the property that is set, which has one byte.
constexpr int isChecked = 1 << 8;  ///< that the variable given to it has a value was looked at before
constexpr int isUnused = 1 << 9;   ///< dst may stay without the value: nobody asks, or asks again

struct Instruction {
  Op op = Op::end;
  std::int16_t aux = 0;
  std::int32_t dst = -1;
  std::int32_t a = -1;
  std::int32_t b = -1;
  std::int32_t c = -1;
};

static_assert(sizeof(Instruction) == 20);

}  // namespace tessel::script
