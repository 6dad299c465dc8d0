//= SFVec3f 2 -1 0
// operands stay as they are
function test() {
  a = new SFVec3f(1, 2, 3);
  b = new SFVec3f(0, 0, 1);
  c = a.cross(b);
  if (a.x == 1 && a.y == 2 && a.z == 3 && b.z == 1) return c;
}
//= SFString 11 5 5 10
function test() {
  a = new SFVec2f(3, 4);
  b = new SFVec3f(1, 2, 3);
  return a.dot(new SFVec2f(1, 2)) + ' ' + a.length() + ' ' + new SFVec3f(0, -3, 4).length() + ' ' +
         b.dot(new SFVec3f(3, 2, 1));
}
//= SFString 0.6 0.8 3 4
// what is not used changes nothing
function test() {
  v = new SFVec2f(3, 4);
  v.normalize();
  n = v.normalize();
  return Math.round(n.x * 1000) / 1000 + ' ' + Math.round(n.y * 1000) / 1000 + ' ' + v.x + ' ' + v.y;
}
//= SFVec3f 0 0 0
function test() { return new SFVec3f(0, 0, 0).normalize(); }
//= SFVec3f -1.5 -3 -4.5
function test() { return new SFVec3f(1, 2, 3).multiply(3).divide(2).negate(); }
//= SFVec2f -4 6
function test() { return new SFVec2f(1, 2).add(new SFVec2f(-4, 5)).subtract(new SFVec2f(1, 1)); }
//= SFVec2f 0.5 -2
function test() { return new SFVec2f(1, -4).divide(2).multiply(true || 0); }
//= SFVec3f inf 5 -inf
function test() { v = new SFVec3f(1, 1, -1).divide(0); v.y = 5; return v; }
//= none
//! Attempt to access unknown SFVec2f object method
//! Attempt to access unknown SFVec3f object method
//! Attempt to access unknown SFColor object method
//! Attempt to access unknown SFRotation object method
// no argument of theirs is evaluated
function never() { return Browser.loadURL(1, 2); }
function test() {
  new SFVec2f(1, 2).cross(new SFVec2f(3, 4));
  new SFVec3f(1, 2, 3).slerp(never());
  new SFColor(1, 2, 3).dot();
  return new SFRotation(1, 0, 0, 1).length();
}
//= none
//! SFVec2f dot method called with the wrong number of arguments
//! SFVec2f length method called with the wrong number of arguments
//! SFVec3f normalize method called with the wrong number of arguments
//! SFVec3f multiply method called with the wrong number of arguments
//! SFVec3f cross method called with the wrong number of arguments
//! SFColor getHSV method called with the wrong number of arguments
//! SFColor setHSV method called with the wrong number of arguments
//! SFRotation multVec method called with the wrong number of arguments
//! SFRotation slerp method called with the wrong number of arguments
//! SFRotation inverse method called with the wrong number of arguments
//! SFRotation getAxis method called with the wrong number of arguments
function test() {
  a = new SFVec2f(1, 2);
  b = new SFVec3f(1, 2, 3);
  c = new SFColor(1, 0, 0);
  r = new SFRotation(0, 0, 1, 2);
  a.dot(); a.length(a); b.normalize(1); b.multiply(1, 2); b.cross();
  c.getHSV(1); c.setHSV(1, 2);
  r.multvec(b, b); r.slerp(r); r.inverse(r); r.getAxis(1);
}
//= none
//! SFVec2f dot method called with argument of incorrect type
//! SFVec2f add method called with argument of incorrect type
//! SFVec2f subtract method called with argument of incorrect type
//! SFVec3f multiply method called with argument of incorrect type
//! SFVec3f divide method called with argument of incorrect type
//! SFVec3f cross method called with argument of incorrect type
//! SFColor setHSV method called with argument of incorrect type
//! SFRotation multVec method called with argument of incorrect type
//! SFRotation slerp method called with argument of incorrect type
//! SFRotation slerp method called with argument of incorrect type
//! SFRotation multiply method called with argument of incorrect type
//! SFRotation setAxis method called with argument of incorrect type
function test() {
  a = new SFVec2f(1, 2);
  b = new SFVec3f(1, 2, 3);
  c = new SFColor(1, 0, 0);
  r = new SFRotation(0, 0, 1, 2);
  a.dot(b); a.add(1); a.subtract('1'); b.multiply(b); b.divide('2'); b.cross(a);
  c.setHSV(0, 1, '1');
  r.multvec(a); r.slerp(1, 1); r.slerp(r, r); r.multiply(b); r.setAxis(c);
}
//= SFTime 1
// An argument without a value ends the call in silence.
function nothing() {}
function test() {
  a = new SFVec3f(1, 2, 3);
  b = a;
  b = a.add(nothing());
  b = a.add(a.add(nothing()));
  if (b.x == 1) return 1;
}
//= SFString 1 2 3 7
// a vector is copied
function test() {
  v = new SFVec3f(1, 2, 3);
  w = v;
  w[0] = 7;
  return v.x + ' ' + v[1] + ' ' + v[2] + ' ' + w[0];
}
//= SFVec3f 1 2 3
function change(v) { v.x = 9; return v; }
function test() {
  v = new SFVec3f(1, 2, 3);
  change(v).y = 7;
  return v;
}
//= SFString 5 5 4 2 true
function test() {
  v = new SFVec3f(1, 2, 3);
  x = v.x = v[1] = 5;
  y = (v.z = 4);
  v.y += 1;
  v[1]++;
  v.y = 2;
  return x + ' ' + v.x + ' ' + v[2] + ' ' + v.y + ' ' + (v.x == 5);
}
//= SFFloat 3
//! Attempt to get value of non-existent element of SF field array
//! Attempt to get value of non-existent element of SF field array
//! Attempt to get value of non-existent element of SF field array
//! Attempt to get value of non-existent element of SF field array
function test() {
  v = new SFVec3f(1, 2, 3);
  a = new SFVec2f(1, 2);
  v[3]; a[-1]; a[2] = 4; new SFRotation(1, 0, 0, 1)[4];
  return v[2.9];
}
//= none
//! Attempt to assign a non-numeric value to a component of a SFVec2f
//! Attempt to assign a non-numeric value to a component of a SFVec3f
//! Attempt to assign a non-numeric value to a component of a SFColor
//! Attempt to assign a non-numeric value to a component of a SFRotation
//! Attempt to assign a non-numeric value to the x property of a SFVec2f field
//! Attempt to assign a non-numeric value to the angle property of a SFRotation field
//! Attempt to assign a value to unknown SFVec2f object property z
//! Attempt to assign a value to unknown SFColor object property x
//! Attempt to access unknown SFVec2f object property z
//! Attempt to access unknown SFVec3f object property length
//! Attempt to access unknown SFRotation object property anything
function test() {
  a = new SFVec2f(1, 2);
  b = new SFVec3f(1, 2, 3);
  c = new SFColor(1, 0, 0);
  r = new SFRotation(0, 0, 1, 2);
  a[0] = '1'; b[0] = a; c[0] = c; r[0] = 'x';
  a.x = 'x'; r.angle = a;
  a.z = 1; c.x = 1;
  a.z; b.length; return r.anything;
}
//= SFVec2f 0 0
//! All arguments to SFVec2f constructor must be numeric
//! All arguments to SFVec3f constructor must be numeric
//! All arguments to SFColor constructor must be numeric
//! All arguments to SFRotation constructor must be numeric
//! First argument to SFRotation constructor must be a SFVec3f
//! Second argument to SFRotation constructor must be numeric or a SFVec3f
function test() {
  v = new SFVec2f('1', 2);
  new SFVec3f(1, v, 3); new SFColor(1, 2, '3'); new SFRotation(1, 2, 3, '4');
  new SFRotation(v, 1); new SFRotation(new SFVec3f(1, 2, 3), v);
  return v;
}
//= SFVec3f 0 0 0
// Each round begins with a new vector.
function nothing() {}
function test() {
  for (i = 0; i < 2; i++) v = new SFVec3f(i == 0 ? 1 : nothing(), 2, 3);
  return v;
}
//= SFColor 0.25 -1 300
function test() { c = new SFColor(0.25, -1, 3); c.b = 300; return c; }
//= SFColor 0 1 0
// setHSV gives nothing, and changes the colour itself
function test() {
  c = new SFColor(1, 1, 1);
  a = c;
  a = c.setHSV(1 / 3, 1, 1);
  if (a.r == 1 && Math.round(c.r) == 0) { c.r = 0; c.g = 1; c.b = 0; return c; }
}
//= SFRotation 1 0 0 1.5
function test() { return new SFRotation(2, 0, 0, 1.5); }
//= SFVec3f 0 1 0
function test() {
  r = new SFRotation(new SFVec3f(0, 0, 1), new SFVec3f(0, 1, 0));
  v = r.multvec(new SFVec3f(0, 0, 1));
  return new SFVec3f(Math.round(v.x), Math.round(v.y), Math.round(v.z));
}
//= SFRotation 0 1 0 2
function test() { return new SFRotation(new SFVec3f(0, 3, 0), 2); }
//= SFRotation 0 0 1 2
// changed in place, without a result
function test() {
  r = new SFRotation(0, 0, 1, 0.5);
  a = 5;
  a = r.multiply(new SFRotation(0, 0, 1, 1.5));
  if (a == 5) return r;
}
//= SFRotation 0 0 1 0.75
function test() { return new SFRotation(0, 0, 1, 0.5).slerp(new SFRotation(0, 0, 1, 1), 0.5); }
//= SFRotation 0 0 -1 0.5
function test() { return new SFRotation(0, 0, 1, 0.5).inverse(); }
//= SFString 0 1 0 5 0 0 1
// an axis that is set is only given back
function test() {
  r = new SFRotation(0, 1, 0, 1);
  v = r.getAxis();
  w = r.setAxis(new SFVec3f(5, 0, 0));
  return v.x + ' ' + v.y + ' ' + v.z + ' ' + w.x + ' ' + w.y + ' ' + r.x + ' ' + r[1];
}
//= SFRotation 1 0 0 2
// one part is replaced, and the whole written again
function test() { r = new SFRotation(0, 0, 1, 1); r.x = 1; r.z = 0; r[3] = 2; return r; }
//= SFColor 1 0 0
//! Attempt to access unknown SFColor object method
function test() { v = new SFVec3f(1, 2, 3); x = v.add(v = new SFColor(1, 0, 0)); return v; }
//= SFVec3f 8 10 12
function test() { v = new SFVec3f(1, 2, 3); return v.add(v = new SFVec3f(4, 5, 6)); }
