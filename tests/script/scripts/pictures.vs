//= SFString 2 1 3 66051 263430
// an entry is a pixel, of which the low bytes count
function test() {
  p = new SFImage(2, 1, 3, new MFInt32(66051, 4294967295 & 263430));
  a = p.array;
  return p.x + ' ' + p.y + ' ' + p.comp + ' ' + a[0] + ' ' + a[1];
}
//= SFString 4 1 44 0 0
// pixels without an entry are black, and entries beyond the size are left out
function test() {
  p = new SFImage(2, 2, 1, new MFInt32(257, 300));
  q = new SFImage(1, 1, 1, new MFInt32(0, 7, 7));
  return p.array.length + ' ' + p.array[0] + ' ' + p.array[1] + ' ' + p.array[3] + ' ' + q.array[0];
}
//= SFString 3 5 6 0 0 1541 0
// a new size keeps the bytes, and black ones follow
function test() {
  p = new SFImage(3, 1, 1, new MFInt32(5, 6, 5));
  p.y = 2;
  a = p.array;
  s = p.x + ' ' + a[0] + ' ' + a[1] + ' ' + a[3] + ' ' + a[5];
  p.x = 1;
  p.array = new MFInt32(6, 5);
  p.comp = 2;
  return s + ' ' + p.array[0] + ' ' + p.array[1];
}
//= SFString 7 7
// shared where a vector is copied
function test() {
  p = new SFImage(1, 1, 1, new MFInt32(1));
  q = p;
  q.array = new MFInt32(7);
  return p.array[0] + ' ' + q.array[0];
}
//= SFString 0 0 0 0
//! First three arguments to SFImage constructor must be scalars
//! Fourth argument to SFImage constructor must be a MFInt32
//! An image of 40000 x 1 pixels with 3 components is out of bounds
//! An image of 32767 x 32767 pixels with 4 components is out of bounds
//! An image of 1 x 1 pixels with 5 components is out of bounds
//! MFInt32 field contains wrong number of pixels to set array property of a SFImage field
function test() {
  m = new MFInt32(1, 2);
  p = new SFImage('1', 1, 1, m);
  new SFImage(1, 1, 1, 1);
  new SFImage(40000, 1, 3, m);
  new SFImage(32767, 32767, 4, m);
  new SFImage(1, 1, 5, m);
  p.array = m;
  return p.x + ' ' + p.y + ' ' + p.comp + ' ' + p.array.length;
}
//= SFString 3 0.5 1 0.25
function test() {
  c = new SFColor(0, 0, 0);
  c.setHSV(0.5, 1, 0.25);
  h = c.getHSV();
  return h.length + ' ' + h[0] + ' ' + h[1] + ' ' + h[2];
}
//= SFString 1 2 3 4 5
// elements of multiples are copied into variables, and have no methods
function test() {
  m = new MFVec3f(new SFVec3f(1, 2, 3), new SFVec3f(4, 5, 6));
  v = m[0];
  v.x = 9;
  w = m[1];
  w = m[0].add(m[1]);
  return m[0][0] + ' ' + m[0][1] + ' ' + m[0][2] + ' ' + w.x + ' ' + w.y;
}
//= none
//! SFVec3f add method called with argument of incorrect type
function test() { m = new MFVec3f(new SFVec3f(1, 2, 3)); return new SFVec3f(1, 1, 1).add(m[0]); }
