function initialize() { fSFInt32 = 3; fSFString = "a" + fSFFloat; }
function go(v, t) { oSFTime = t; oSFInt32 = fSFInt32++; oSFString = fSFString; while (v) { fSFFloat += 0.5; if (fSFFloat > 9) break; } }
function eSFString(s) { oSFString = s + s; fSFBool = s == "text" && !fSFBool; }
function eMFVec3f(m) { m[3] = new SFVec3f(1, 2, 3); v = m[0]; v[1] = 4; oMFVec3f = m; oSFVec3f = v.cross(m[3]).normalize(); }
function eSFNode(n) { n.translation = new SFVec3f(1, 2, 3); oSFNode = n; x = n.translation[1]; n.children = new MFNode(new SFNode("Shape { }")); }
function eSFImage(i) { a = i.array; a[0] = 255; i.array = a; i.x = 4; oSFImage = new SFImage(2, 2, 3, new MFInt32(1, 2, 3, 4)); }
function eSFRotation(r) { oSFRotation = r.inverse().slerp(r, 0.5); r.multiply(r); s = new SFString("%d %5.2f %s%%", 1, 2.5, "x"); oSFString = s.substring(0, 2).toUpperCase(); }
function eventsProcessed() { oSFFloat = Math.sin(fSFFloat) * parseInt("0x10") + parseFloat("1.5"); Browser.addRoute(fSFNode, "translation_changed", fSFNode, "set_scale"); }
function shutdown() { Browser.createVrmlFromString("Box { }"); }
