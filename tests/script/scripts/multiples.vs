//= MFFloat 1 2.5 3 4
function test() { return new MFFloat(1, 2.5, 1 + 2, true * 4); }
//= MFInt32 1 -2 2147483647
function test() { return new MFInt32(true, -2.9, 3000 * 1000 * 1000); }
//= MFString [a] [] [c]
function test() { m = new MFString('a'); m[2] = 'c'; return m; }
//= MFVec3f (1 2 3) (0 0 0)
function test() { m = new MFVec3f(new SFVec3f(1, 2, 3)); m.length = 2; return m; }
//= MFVec2f (1 2) (3 4)
function test() { return new MFVec2f(new SFVec2f(1, 2), new SFVec2f(3, 4)); }
//= MFColor (0 0 0) (0.25 0.5 1)
function test() { m = new MFColor(); m[1] = new SFColor(0.25, 0.5, 1); return m; }
//= MFRotation (0 0 1 0) (0 1 0 2)
function test() { m = new MFRotation(); m[1] = new SFRotation(0, 1, 0, 2); return m; }
//= MFNode null null
function test() { m = new MFNode(); m.length = 2; return m; }
//= MFInt32 1
//! All arguments to MFInt32 constructor must be numeric
// what stands before the bad one stays
function test() { return new MFInt32(1, 'a', 3); }
//= MFVec2f (1 2)
//! All arguments to MFFloat constructor must be numeric
//! All arguments to MFNode constructor must be SFNode's
//! All arguments to MFString constructor must be strings
//! All arguments to MFVec3f constructor must be SFVec3f's
//! All arguments to MFColor constructor must be SFColor's
//! All arguments to MFRotation constructor must be SFRotation's
//! All arguments to MFVec2f constructor must be SFVec2f's
// an element of a multiple is not a single vector there
function test() {
  v = new SFVec2f(1, 2);
  new MFFloat(v); new MFNode('x'); new MFString(1); new MFVec3f(v); new MFColor(new SFVec3f(1, 1, 1));
  new MFRotation(1);
  m = new MFVec2f(v);
  return new MFVec2f(v, m[0]);
}
//= MFInt32 1 0 0 7
function test() { m = new MFInt32(1); m[3] = 7; return m; }
//= SFInt32 11
function test() { m = new MFInt32(1, 2); m[10] = 1; return m.length; }
//= SFString 2 5 0 3
function test() {
  m = new MFInt32(1, 2, 3);
  m.length = 2;
  a = m.length;
  x = m.length = 5;
  return a + ' ' + x + ' ' + m[4] + ' ' + (m.length = 3.9);
}
//= MFFloat 9 2
// assigned whole it is shared
function test() { a = new MFFloat(1, 2); b = a; b[0] = 9; return a; }
//= MFFloat 9 2
function change(m) { m[0] = 9; m = new MFFloat(5); m[0] = 6; }
function test() { a = new MFFloat(1, 2); change(a); return a; }
//= SFString 1 2 3
// every round makes a new one where the last is still held
function test() {
  for (i = 1; i < 4; i++) { m = new MFInt32(i); if (i == 1) a = m; if (i == 2) b = m; }
  return a[0] + ' ' + b[0] + ' ' + m[0];
}
//= MFVec3f (1 9 3) (4 5 6)
// an element is a place in the whole, a variable has a copy
function test() {
  m = new MFVec3f(new SFVec3f(1, 2, 3), new SFVec3f(4, 5, 6));
  v = m[1];
  v.x = 7;
  m[0][1] = 9;
  return m;
}
//= SFFloat 6
function test() { m = new MFVec3f(new SFVec3f(1, 2, 3), new SFVec3f(4, 5, 6)); return m[1][2]; }
//= MFVec2f (3 4) (3 4) (0 0)
function test() {
  m = new MFVec2f(new SFVec2f(1, 2), new SFVec2f(3, 4), new SFVec2f(0, 0));
  m[0] = m[1];
  return m;
}
//= MFRotation (0 0 1 2) (0 1 0 1)
function test() {
  m = new MFRotation(new SFRotation(0, 0, 1, 1), new SFRotation(0, 1, 0, 1));
  m[0][3] = 2;
  return m;
}
//= MFInt32 5 12
function test() { m = new MFInt32(5, 10); m[1] += 1; m[1]++; return m; }
//= none
//! Attempt to assign a non-numeric value to an element of a MFInt32
//! Attempt to assign a non-numeric value to an element of a MFFloat
//! Attempt to assign a value to a element of a MFString that is not a string
//! Attempt to assign a value to a element of a MFNode that is not a SFNode
//! Attempt to assign a value to a element of a MFVec2f that is not a SFVec2f
//! Attempt to assign a value to a element of a MFVec3f that is not a SFVec3f
//! Attempt to assign a value to a element of a MFColor that is not a SFColor
//! Attempt to assign a value to a element of a MFRotation that is not a SFRotation
//! Attempt to assign a non-numeric value to a component of a SFVec3f
//! Array index must be a scalar value
function test() {
  v = new SFVec3f(1, 2, 3);
  m = new MFVec3f(v);
  (new MFInt32())[0] = 'a'; (new MFFloat())[0] = v; (new MFString())[0] = 1; (new MFNode())[0] = 1;
  (new MFVec2f())[0] = v; m[0] = 1; (new MFColor())[0] = m[0]; (new MFRotation())[0] = v;
  m[0][0] = 'x'; return m['a'];
}
//= SFInt32 1
//! Attempt to get value of non-existent element of MF field array\n    (index 1 length 1)
//! Attempt to get value of non-existent element of MF field array\n    (index -1 length 1)
//! Attempt to get value of non-existent element of MF field array\n    (index -1 length 1)
//! Attempt to get value of non-existent element of MF field array\n    (index 2147483647 length 1)
//! Attempt to get value of non-existent element of MF field array\n    (index 16777216 length 1)
//! Attempt to get value of non-existent element of MF field array\n    (index -5 length 1)
//! Attempt to get value of non-existent element of MF field array\n    (index 2147483647 length 1)
//! Attempt to get value of non-existent element of SF field array\n    (index 3 length 3
//! Attempt to get value of non-existent element of MF field array\n    (index 0 length 0)
// growth is bounded
function test() {
  m = new MFInt32(1);
  m[1]; m[-1]; m[-1] = 2; m[2147483648] = 2; m[16777216] = 1; m.length = -5; m.length = 2147483647;
  v = new MFVec3f(new SFVec3f(1, 2, 3));
  v[0][3];
  element = (a = v, v[0]);
  for (i = 0; i < 2; i++) if (i == 0) v.length = 0; else v[0];
  return m.length;
}
//= none
//! Attempt to take more than
function fill(depth) { m = new MFFloat(); m.length = 16000000; if (depth) fill(depth - 1); }
function test() { fill(4); }
//= SFInt32 1
//! Attempt to access unknown multi-valued field property x
//! Attempt to access unknown multi-valued field property size
//! Attempt to assign a value to unknown multi-valued field property size
//! Attempt to assign a non-numeric value to the length property of a multi-valued field
//! Attempt to assign a non-numeric value to the size property of a multi-valued field
// an element has the properties of the whole
function test() {
  m = new MFVec2f(new SFVec2f(1, 2));
  m[0].x; m.size; m.size = 1; m.length = 'a'; m.size = 'a';
  return m[0].length;
}
//= SFTime 5
// no multiple has methods; one that is called does nothing at all
function never() { return Browser.loadURL(1, 2); }
function test() {
  m = new MFVec3f(new SFVec3f(1, 2, 3));
  a = 5;
  a = m[0].dot(new SFVec3f(1, 1, 1));
  a = m.length();
  a = m.charAt(1);
  return a;
}
//= none
//! Attempt to apply arithmetic operator to values of the wrong type
//! Attempt to apply logical operator to values of the wrong type
function test() { m = new MFInt32(1); m + 1; m == m; }
//= SFTime 49995000
function test() {
  m = new MFFloat();
  for (i = 0; i < 10000; i++) m[m.length] = i;
  s = 0;
  for (i = 0; i < m.length; i++) s += m[i];
  return s;
}
//= MFString [xy] [b]
// what is read from a list of strings is a copy
function test() { m = new MFString('a', 'b'); s = m[0]; m[0] = 'xy'; if (s == 'a') return m; }
//= SFString ba
function test() { m = new MFString('a', 'b'); m[0] = m[1] + m[0]; return m[0]; }
//= SFTime 0
function test() { m = new MFFloat(1, 2); n = 0; m.dot(n = 5); m[0].dot(n = 5); n.dot(n = 5); return n; }
//= SFTime 0
//! Attempt to access an uninitialized variable
//! Attempt to apply arithmetic operator to values of the wrong type
//! Attempt to access an uninitialized variable
//! Attempt to get value of non-existent element of MF field array
function test() { m = new MFFloat(1); x = 0; if (0) u = 1; x = u + m[0]; x = u + m[9]; return x; }
//= SFTime 4
//! Attempt to apply increment/decrement operator to a non-numeric value
function test() { n = 0; for (i = 0; n < 4; i++) { n = n + 1; if (n == 2) i = "text"; if (n == 3) i = 0; } return n; }
//= SFTime 1
//! Attempt to apply increment/decrement operator to a non-numeric value
function test() { n = 0; for (i = "text"; n < 4; i++) n = n + 1; return n; }
//= SFFloat 7
// the first thing that a function does
function first(m) { m[0]; return m[0]; }
function test() { return first(new MFFloat(7)); }
//= SFTime 1
function count(n) { n++; return n; }
function test() { return count(0); }
