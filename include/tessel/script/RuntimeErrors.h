// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// The texts of which the run-time reports of scripts are made. None of them stops a script.

/// Expressions.
inline constexpr const char* RTE_EXPR_SET_EVENTIN = "Tried to set the value of a Script node eventIn";
inline constexpr const char* RTE_EXPR_CHANGE_TYPE =
    "Tried to change the type of a Script node eventIn, eventOut, or field";
inline constexpr const char* RTE_EXPR_PARSEINT_FIRST =
    "First argument to parseInt function must be a SFString";
inline constexpr const char* RTE_EXPR_PARSEINT_SECOND =
    "Second argument to parseInt function must be a scalar";
inline constexpr const char* RTE_EXPR_PARSEINT_RADIX = "Radix of parseInt function must be >= 0";
inline constexpr const char* RTE_EXPR_PARSEFLOAT_ARG = "Argument to parseFloat function must be a SFString";
inline constexpr const char* RTE_EXPR_UNINIT_VAR = "Attempt to access an uninitialized variable";
inline constexpr const char* RTE_EXPR_NO_SF_ELEMENT =
    "Attempt to get value of non-existent element of SF field array\n    (index";
inline constexpr const char* RTE_EXPR_NO_MF_ELEMENT =
    "Attempt to get value of non-existent element of MF field array\n    (index";
inline constexpr const char* RTE_EXPR_LENGTH = "length";
inline constexpr const char* RTE_EXPR_SCALAR_INDEX = "Array index must be a scalar value";
inline constexpr const char* RTE_EXPR_DEREF_NOT_ARRAY =
    "Attempt to get element of a value that is not an array";
inline constexpr const char* RTE_EXPR_SFVEC2F_TYPE =
    "Attempt to assign a non-numeric value to a component of a SFVec2f";
inline constexpr const char* RTE_EXPR_SFVEC3F_TYPE =
    "Attempt to assign a non-numeric value to a component of a SFVec3f";
inline constexpr const char* RTE_EXPR_SFCOLOR_TYPE =
    "Attempt to assign a non-numeric value to a component of a SFColor";
inline constexpr const char* RTE_EXPR_SFROTATION_TYPE =
    "Attempt to assign a non-numeric value to a component of a SFRotation";
inline constexpr const char* RTE_EXPR_MFINT32_TYPE =
    "Attempt to assign a non-numeric value to an element of a MFInt32";
inline constexpr const char* RTE_EXPR_MFFLOAT_TYPE =
    "Attempt to assign a non-numeric value to an element of a MFFloat";
inline constexpr const char* RTE_EXPR_MFSTRING_TYPE =
    "Attempt to assign a value to a element of a MFString that is not a string";
inline constexpr const char* RTE_EXPR_MFNODE_TYPE =
    "Attempt to assign a value to a element of a MFNode that is not a SFNode";
inline constexpr const char* RTE_EXPR_MFVEC2F_TYPE =
    "Attempt to assign a value to a element of a MFVec2f that is not a SFVec2f";
inline constexpr const char* RTE_EXPR_MFVEC3F_TYPE =
    "Attempt to assign a value to a element of a MFVec3f that is not a SFVec3f";
inline constexpr const char* RTE_EXPR_MFCOLOR_TYPE =
    "Attempt to assign a value to a element of a MFColor that is not a SFColor";
inline constexpr const char* RTE_EXPR_MFROTATION_TYPE =
    "Attempt to assign a value to a element of a MFRotation that is not a SFRotation";
inline constexpr const char* RTE_EXPR_BAD_ARITH_OP =
    "Attempt to apply invalid arithmetic operator to a string";
inline constexpr const char* RTE_EXPR_ARITH_TYPE =
    "Attempt to apply arithmetic operator to values of the wrong type";
inline constexpr const char* RTE_EXPR_INCDEC_TYPE =
    "Attempt to apply increment/decrement operator to a non-numeric value";
inline constexpr const char* RTE_EXPR_UNARY_ARITH_TYPE =
    "Attempt to apply unary arithmetic operator to a non-numeric value";
inline constexpr const char* RTE_EXPR_LOGIC_TYPE =
    "Attempt to apply logical operator to values of the wrong type";
inline constexpr const char* RTE_EXPR_UNARY_LOGIC_TYPE =
    "Attempt to apply unary logical operator to a non-numeric value";
inline constexpr const char* RTE_FUNC_MATH_ASSIGN = "Cannot assign to properties of the Math object";

/// Properties, methods and constructors of values.
inline constexpr const char* RTE_FLD_WRONG_NUM = "method called with the wrong number of arguments";
inline constexpr const char* RTE_FLD_BAD_TYPE = "method called with argument of incorrect type";
inline constexpr const char* RTE_FLD_ACCESS_UNKNOWN = "Attempt to access unknown";
inline constexpr const char* RTE_FLD_ASSIGN_UNKNOWN = "Attempt to assign a value to unknown";
inline constexpr const char* RTE_FLD_OBJECT_METHOD = "object method";
inline constexpr const char* RTE_FLD_OBJECT_PROP = "object property";
inline constexpr const char* RTE_FLD_NUMERIC_ASSIGN = "Attempt to assign a non-numeric value to the";
inline constexpr const char* RTE_FLD_PROP_OF = "property of a";
inline constexpr const char* RTE_FLD_FIELD = "field";
inline constexpr const char* RTE_FLD_MF_PROP = "property of a multi-valued field";
inline constexpr const char* RTE_FLD_ALL_ARGS = "All arguments to";
inline constexpr const char* RTE_FLD_MUST_BE = "constructor must be";
inline constexpr const char* RTE_FLD_UNKNOWN_MF_ACCESS =
    "Attempt to access unknown multi-valued field property";
inline constexpr const char* RTE_FLD_UNKNOWN_MF_ASSIGN =
    "Attempt to assign a value to unknown multi-valued field property";
inline constexpr const char* RTE_FLD_SUBSTRING_INDEX =
    "SFString substring method called with out of range index";
inline constexpr const char* RTE_FLD_STRING_LENGTH = "Cannot assign a value to SFString length property";
inline constexpr const char* RTE_FLD_SFSTRING_FIRST_ARG =
    "First argument to a SFString constructor must be a string or a number";
inline constexpr const char* RTE_FLD_SFIMAGE_ARG13 =
    "First three arguments to SFImage constructor must be scalars";
inline constexpr const char* RTE_FLD_SFIMAGE_ARG4 =
    "Fourth argument to SFImage constructor must be a MFInt32";
inline constexpr const char* RTE_FLD_SFIMAGE_ARRAY =
    "Attempt to assign a value to the array property of a SFImage field that is not a MFInt32";
inline constexpr const char* RTE_FLD_SFIMAGE_PIXELS =
    "MFInt32 field contains wrong number of pixels to set array property of a SFImage field";
inline constexpr const char* RTE_FLD_SFROTATION_BAD_ARG1 =
    "First argument to SFRotation constructor must be a SFVec3f";
inline constexpr const char* RTE_FLD_SFROTATION_BAD_ARG2 =
    "Second argument to SFRotation constructor must be numeric or a SFVec3f";
inline constexpr const char* RTE_FLD_SFNODE_ARG = "Argument to SFNode constructor must be a string";
inline constexpr const char* RTE_FLD_SFNODE_NO_PROP = "SFNode does not have a property named";
inline constexpr const char* RTE_FLD_SFNODE_NO_ACCESS = "Cannot access property of SFNode -";
inline constexpr const char* RTE_FLD_SFNODE_NO_ASSIGN = "Cannot assign to property of SFNode -";
inline constexpr const char* RTE_FLD_SFNODE_NOT_EVENTIN = "is not an eventIn";
inline constexpr const char* RTE_FLD_SFNODE_NOT_EVENTOUT = "is not an eventOut";
inline constexpr const char* RTE_FLD_SFNODE_UNIMP = "SFNode property access is unimplemented yet";
inline constexpr const char* RTE_FLD_SFNODE_NON_NUMERIC = "Attempt to assign a non-numeric value to the";
inline constexpr const char* RTE_FLD_SFNODE_FIELD = "eventIn of a SFNode field";
inline constexpr const char* RTE_FLD_SFNODE_ASSIGN_VAL = "Attempt to assign value to the";
inline constexpr const char* RTE_FLD_SFNODE_SFVEC2F = "that is not a SFVec2f";
inline constexpr const char* RTE_FLD_SFNODE_SFVEC3F = "that is not a SFVec3f";
inline constexpr const char* RTE_FLD_SFNODE_SFCOLOR = "that is not a SFColor";
inline constexpr const char* RTE_FLD_SFNODE_SFROTATION = "that is not a SFRotation";
inline constexpr const char* RTE_FLD_SFNODE_BAD_TYPE =
    "Attempt to assign a value of the incorrect type to the";

/// The Browser object.
inline constexpr const char* RTE_BROWSER_WRONG_ARG_PART1 = "argument to Browser";
inline constexpr const char* RTE_BROWSER_WRONG_ARG_PART2 = "method must be a";
inline constexpr const char* RTE_BROWSER_OBJECT = "Browser object";
inline constexpr const char* RTE_BROWSER_NOT_IMPLEMENTED = "method is not implemented yet";
inline constexpr const char* RTE_BROWSER_IN_BROWSER = "In Browser";
inline constexpr const char* RTE_BROWSER_NO_EVENTIN = "- no eventIn named";
inline constexpr const char* RTE_BROWSER_NO_EVENTOUT = "- no eventOut named";
inline constexpr const char* RTE_BROWSER_EXISTS = "exists";
inline constexpr const char* RTE_BROWSER_NOT_EVENTIN = "is not an eventIn";
inline constexpr const char* RTE_BROWSER_NOT_EVENTOUT = "is not an eventOut";
inline constexpr const char* RTE_BROWSER_EVENT_MISMATCH = "addRoute - eventIn and eventOut types don't match";
