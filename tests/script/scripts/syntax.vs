//= SFTime 0
function test() { return 0.0000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000001; }
//= SFTime 2147483647
function test() { return 999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999.5; }
//= SFTime 511
function test() { return 0777; }
//= SFTime 778
function test() { return 0778; }
//= SFTime 31
function test() { return 0x1F; }
//= SFTime 0.5
function test() { return .5; }
//= SFTime 1250
function test() { return 1.25e3; }
//= SFTime 777.5
function test() { return 0777.5; }
//= SFTime 2
function test() { return true + TRUE + false; }
//= SFString a\n
function test() { return "a\n"; }
//= unparsed
//! syntax error: line "function test() { return 'it's'; }"
function test() { return 'it's'; }
//= unparsed
//! syntax error: line "  var x;"
function test() {
  var x;
}
//= no test
/* nothing */ // at all
//= no test
//= unparsed
//! syntax error
function test() { return "never ends; }
//= unparsed
//! syntax error
function test() { return 1; } /* never ends
//= unparsed
//! syntax error
function test() { x$ = 1; }
//= unparsed
//! syntax error
function test() { ; }
//= unparsed
//! syntax error
function test() { return + 1; }
//= unparsed
//! syntax error
function test() { a = b + + c; }
//= SFString ft
function f(a) { return a ? "t" : "f"; }
function test() { return f(0 ? 1 : 1 ? 0 : 1) + f(0 ? 0 : 1); }
//= SFTime -6
function test() { a = 2; return -a * 3; }
//= SFBool true
function test() { a = 0; return !a == 1; }
//= SFTime 7
function test() { a = 2; return a + b = 5; }
//= SFTime 26
function test() { return 2 + 3 * 8; }
//= SFTime 3
function test() { return 1 | 2 ^ 3 & 6 == 6 < 7 << 1 & 5; }
//= SFTime 3
function test() { return (1, 2, 3); }
//= unparsed
//! syntax error
function test() { return 1 ? 2, 3 : 4; }
//= unparsed
//! syntax error
function test() { ++a++; }
//= unparsed
//! syntax error
function test() { 5++; }
//= unparsed
//! syntax error
function test() { test() = 3; }
//= unparsed
//! syntax error
function test() { (a) = 3; }
//= unparsed
//! Function 'g' must be defined before it can be used: line "function f() { g()
function f() { g(); }
function g() { }
function test() { }
//= SFTime 1
function g() { return 1; }
function f() { return g(); }
function test() { return f(); }
//= SFTime 1
function f() { return 1; }
function f() { return 2; }
function test() { return f(); }
//= unparsed
//! <for..in> statement not implemented yet
//! <with> statement not implemented yet
function test() { for (x in y) { } with (y) { } }
//= unparsed
//! Invalid constructor function SFFoo called
//! Constructor function SFVec3f called with incorrect number of arguments
//! Constructor function SFRotation called with incorrect number of arguments
//! parseInt function called with incorrect number of arguments
//! parseFloat function called with incorrect number of arguments
//! Unknown Math object method atan2 invoked
//! Math object method abs called with wrong number of parameters
//! Unknown Browser object method close invoked
//! Browser object method getName called with wrong number of parameters
//! Unknown method fly invoked
//! Unknown Math object property TAU accessed
//! Browser object has no property name
function test() {
  new SFFoo(); new SFVec3f(1, 2); new SFRotation(1, 2, 3);
  parseInt(); parseFloat("1", 2);
  Math.atan2(1, 2); Math.abs(1, 2); Browser.close(); Browser.getName(1);
  a = 1; a.fly(); Math.TAU; Browser.name;
}
//= unparsed
//! syntax error: line "  b = ;"
//! syntax error: line "  d = = 1;"
function test() {
  a = 1;
  b = ;
  c = 2; c = 3;
  d = = 1;
}
//= unparsed
//! syntax error: line "  b = ;"
function test() {
  b = ;
  d = = 1;
}
function f() { var }
//= SFTime 2
function f(a, a) { return a; }
function test() { return f(1, 2); }
//= SFTime 2147483647
function test() { return 0.0001e400; }
//= SFTime 10
function test() { return 100000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000e-349; }
//= unparsed
//! Browser object has no property name
function test() { Browser.name = 1; }
//= unparsed
//! syntax error: line "  for (i = ;"
//! syntax error: line "       i; i) b = 1;"
function test() { a = 1;
  for (i = ;
       i; i) b = 1;
}
//= SFTime 3
function f(, a) { return a; }
function test() { return f(, 3); }
//= unparsed
//! syntax error
function f(,, a) { }
