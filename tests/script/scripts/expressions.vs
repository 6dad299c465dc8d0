//= SFTime 0.333333
function test() { return 1 / 3; }
//= SFTime 0.666667
function test() { return 2 / 3; }
//= SFTime -0.666667
function test() { return -2 / 3; }
//= SFTime 2147483647
function test() { return 1 / 0; }
//= SFTime 0
function test() { return 0 / 0; }
//= SFTime 3.141593
function test() { return Math.PI; }
//= SFString a1
function test() { return "a" + 1; }
//= SFString a1.5
function test() { return "a" + 1.5; }
//= SFString 1.5a
function test() { return 1.5 + "a"; }
//= none
//! Attempt to apply invalid arithmetic operator to a string
function test() { return "a" - 1; }
//= SFBool true
function test() { return 5 == "5"; }
//= SFBool true
function test() { return "5" == 5.7; }
//= SFString 0101
function b(x) { return x ? "1" : "0"; }
function test() { return b("b" < "a") + b("a" < "b") + b("a" >= "b") + b("a" != "b"); }
//= none
//! Attempt to apply logical operator to values of the wrong type
function test() { return "a" && 1; }
//= SFBool false
function f() { x = y; }
function test() { return false && f(); }
//= SFBool true
function f() { x = y; }
function test() { return 1 || f(); }
//= none
//! Attempt to access an uninitialized variable
//! Attempt to apply arithmetic operator to values of the wrong type
function test() { return x + 1; }
//= SFTime 10
function test() { a = 1; return a + (a = 5); }
//= SFString 10 7 10 3 7 2
function test() {
  a = 1; b = 2; c = true;
  r = '' + ((c ? a : b) + (a = 5)); a = 1;
  r += ' ' + ((c ? b : a) + (a = 5)); a = 1;
  r += ' ' + ((!c ? b : (!c ? 9 : (b, a))) + (a = 5)); a = 1;
  r += ' ' + ((c ? a + 1 : b) + (c = false, a = 1)); c = true; a = 1;
  r += ' ' + ((c ? b : a) + (c = false, a = 5)); a = 1;
  v = new SFVec3f(0, 0, 0);
  v[(a = 2, 0)] = (!c ? a : b) ? a : 9;
  return r + ' ' + v.x;
}
//= SFString 10
//! Attempt to access an uninitialized variable
function test() { c = true; return '' + ((c ? a : 1) + (a = 5)); }
//= SFTime 10
//! Attempt to access an uninitialized variable
function test() { return a + (a = 5); }
//= SFTime 3
function test() { i = 1; return i + i++; }
//= SFTime 255
function test() { return -2 & 255; }
//= SFTime 2147483647
function test() { return -1 | 0; }
//= SFTime 16
function test() { return 1 << 36; }
//= SFTime 1073741823
function test() { return -1 >>> 1; }
//= SFTime -1
function test() { return -1 >>> 0; }
//= SFTime 2147483647
function test() { return -1 >> 1; }
//= SFTime -1
function test() { return -7 % 3; }
//= SFTime 0
function test() { return 7 % 0.5; }
//= SFTime -6
function test() { return ~5; }
//= none
//! Attempt to apply unary arithmetic operator to a non-numeric value
//! Attempt to apply unary logical operator to a non-numeric value
//! Attempt to apply increment/decrement operator to a non-numeric value
function test() { a = "x"; x = -a; x = !a; x = a++; if (0) return x; }
//= SFString 5676
function test() { i = 5; s = "" + i++; s = s + i; s = s + ++i; s = s + --i; return s; }
//= SFTime 8
function test() { x = 5; x += 3; return x; }
//= SFTime 5
function test() { x = y = 5; return x; }
//= SFInt32 42
function test() { return parseInt("42 is it"); }
//= SFInt32 255
function test() { return parseInt("ff", 16); }
//= SFFloat 2.5
function test() { return parseFloat("2.5m"); }
//= none
//! First argument to parseInt function must be a SFString
//! Second argument to parseInt function must be a scalar
//! Radix of parseInt function must be >= 0
//! Argument to parseFloat function must be a SFString
function test() { parseInt(1); parseInt("1", "2"); parseInt("1", -1); parseFloat(1); }
//= SFTime -2
function test() { return Math.round(2.5) + Math.round(-2.2) + Math.round(-2.7) + 1; }
//= none
//! Attempt to apply arithmetic operator to values of the wrong type
function test() { return Math.abs("a"); }
//= none
//! Cannot assign to properties of the Math object
function test() { Math.PI = 3; }
//= SFTime 1.75
function test() { return Math.max(1, 0.5) + Math.min(0.75, 3); }
//= none
//! Attempt to get element of a value that is not an array
//! Attempt to get element of a value that is not an array
//! Array index must be a scalar value
function test() { a = 1; x = a[0]; s = "a"; s[0] = 1; x = a["b"]; }
//= SFString abababab
function test() { s = "ab"; s = s + s; s = s + s; return s; }
//= SFString abX abY
function test() { s = "ab"; t = s + "X"; u = s + "Y"; return t + " " + u; }
//= none
//! Attempt to access an uninitialized variable
//! Attempt to access an uninitialized variable
//! Array index must be a scalar value
function test() { return b + m[b]; }
//= none
//! Attempt to access an uninitialized variable
//! Attempt to apply arithmetic operator to values of the wrong type
function test() { return (a = b) + 1; }
//= none
//! Attempt to apply invalid arithmetic operator to a string
//! Attempt to get value of non-existent element of MF field array\n    (index 1 length 1)
//! Attempt to apply invalid arithmetic operator to a string
function test() { m = new MFString("p"); for (i = 0; i < 2; i++) m[i] -= "x"; }
//= SFFloat 2
function test() { c = 0; m = new MFFloat(1, 2); if (c) a; return m[1]; }
//= SFTime 2
//! Attempt to access an uninitialized variable
function test() { i = 0; m = new MFFloat(1, 1, 0); for (a; m[i]; i++) { } return i; }
