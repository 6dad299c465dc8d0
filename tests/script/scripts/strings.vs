//= SFString a|c||
// a place outside the text has no character
function test() { s = 'abc'; return s.charAt(0) + '|' + s.charAt(2.9) + '|' + s.charAt(3) + '|' + s.charAt(-1); }
//= SFString 2 -1 3 -1 -1 3 0
// only the first character is looked for, and from a place outside the text nothing is found
function test() {
  s = 'abcb';
  return s.indexOf('cz') + ' ' + s.indexOf('z') + ' ' + s.indexOf('b', 2) + ' ' + s.indexOf('a', 1) + ' ' +
         s.indexOf('b', -5) + ' ' + s.lastIndexOf('b') + ' ' + s.lastIndexOf('a', 1);
}
//= SFString -1 1 3 -1 -1 -1
function test() {
  s = 'abcb';
  return 'abc'.lastIndexOf('a', 0) + ' ' + s.lastIndexOf('b', 3) + ' ' + s.lastIndexOf('b', 4) + ' ' + s.lastIndexOf('b', 99) + ' ' +
         s.lastIndexOf('b', -1) + ' ' + s.indexOf('b', 99);
}
//= SFString 4 4 2
// an empty text is found at the end
function test() { s = 'abcb'; return s.indexOf('') + ' ' + s.lastIndexOf('') + ' ' + s.lastIndexOf('', 2); }
//= SFString ab ab bc||
function test() {
  s = 'abcd';
  return s.substring(0, 2) + ' ' + s.substring(2, 0) + ' ' + s.substring(1, 3) + '|' + s.substring(2, 2) + '|';
}
//= SFString x
//! SFString substring method called with out of range index
//! SFString substring method called with out of range index
//! SFString substring method called with out of range index
//! SFString substring method called with out of range index
function test() {
  s = 'abc';
  return s.substring(0, 3) + s.substring(-1, 1) + ''.substring(0, 0) + s.substring(1, 2000000000) + 'x';
}
//= SFString abc-1%ABC-1%aBc-1%
function test() { s = 'aBc-1%'; return s.toLowerCase() + s.toUpperCase() + s; }
//= SFInt32 5
function test() { return ('ab' + 123).length; }
//= none
//! Cannot assign a value to SFString length property
//! Attempt to access unknown SFString object property x
//! Attempt to assign a value to unknown SFString object property size
//! Attempt to access unknown SFString object method
function test() { s = 'abc'; s.length = 2; s.x; s.size = 1; return s.dot(s); }
//= none
//! SFString charAt method called with the wrong number of arguments
//! SFString indexOf/lastIndexOf method called with the wrong number of arguments
//! SFString indexOf/lastIndexOf method called with the wrong number of arguments
//! SFString substring method called with the wrong number of arguments
//! SFString toLowerCase/toUpperCase method called with the wrong number of arguments
//! SFString toLowerCase/toUpperCase method called with the wrong number of arguments
function test() {
  s = 'abc';
  s.charAt(); s.indexOf(); s.lastIndexOf('a', 1, 2); s.substring(1); s.toLowerCase(1); s.toUpperCase(s);
}
//= none
//! SFString charAt method called with argument of incorrect type
//! SFString indexOf/lastIndexof method called with argument of incorrect type
//! SFString indexOf/lastIndexOf method called with argument of incorrect type
//! SFString indexOf/lastIndexOf method called with argument of incorrect type
//! SFString indexOf/lastIndexOf method called with argument of incorrect type
//! SFString substring method called with argument of incorrect type
function test() {
  s = 'abc';
  s.charAt('1'); s.indexOf(1); s.lastIndexOf(1); s.indexOf('a', 'b'); s.lastIndexOf('a', s); s.substring(1, '2');
}
//= SFString abc xbc abc
// results don't change what they were made of
function test() {
  s = 'abc';
  t = s.substring(0, 2);
  for (i = 0; i < 3; i++) { u = s.charAt(i); if (i == 0) first = u; }
  return s + ' ' + 'x' + s.charAt(1) + u + ' ' + first + t.charAt(1) + u;
}
//= SFString |7|1.5|true|%d
function test() {
  return new SFString() + '|' + new SFString(7) + '|' + new SFString(1.5) + '|' + new SFString(1 < 2) + '|' +
         new SFString('%d');
}
//= SFString |
//! First argument to a SFString constructor must be a string or a number
//! First argument to a SFString constructor must be a string or a number
function test() { return new SFString(1, 'a') + new SFString(new SFVec2f(1, 2)) + '|'; }
//= SFString 3-x| 1.50||a%b
function test() {
  return new SFString('%d-%s', 3, 'x') + '|' + new SFString('%5.2f', 1.5) + '|' + new SFString('%x', 255) + '|' +
         new SFString('a%%b', 1);
}
//= SFString 00042|+7 |-3|1.5e+03|2.5|a|   b|1
function test() {
  return new SFString('%05d|%-+3i|%i|%.1e|%g|%c|%4c|%c', 42, 7, -3.9, 1500, 2.5, 'abc', 'b', 123);
}
//= SFString 2.5 and abc|  2.5|2|true
// width and precision are for numbers
function test() { return new SFString('%s and %9.1s|%5s|%.1s|%S', 2.5, 'abc', 2.5, 2.5, 1 < 2); }
//= SFString <><><><b>
// wrong kinds and letters that nothing is made of use up an argument
function test() { return new SFString('<%d><%o%u%X><%f><%s>', 'a', 1, 2, 3, 'a', 'b'); }
//= SFString 1 q! 2  %
// cancelled, missing and unfinished specifications
function test() { return new SFString('%d %5q! %d %d %%', 1, 2) + new SFString('%% %5', 1, 2).charAt(0); }
//= SFString 1%
// %% with anything in between adds nothing, and none does without an argument
function test() { return new SFString('%d%%%5%%%', 1, 2, 3); }
//= SFString 1000 1000 1002
// nothing reaches for memory, or for arguments that are not there
function test() {
  return new SFString('%999999999d', 1).length + ' ' + new SFString('%99999999999999999999s', 2.5).length + ' ' +
         new SFString('%.2147483648f', 1).length;
}
//= SFString 7|7|7|4464|112|7.500000|2.5
function test() { return new SFString('%*d|%9$d|%ld|%hd|%hhd|%Lf|%ls', 7, 7, 7, 70000, 112, 7.5, 2.5); }
//= SFInt32 0
//! Attempt to make a string longer than 16777216 characters
function test() {
  s = 'x';
  for (i = 0; i < 24; i++) s = s + s;
  return new SFString('%s%s', s, 'x').length;
}
//= SFString -0 0
function test() { v = new SFVec3f(0, 1, 2); v = v.negate(); return v.x + " " + -0; }
