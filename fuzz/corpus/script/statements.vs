//= SFTime 3
function test() { i = 0; while (i < 3) { i = i + 1; continue; } return i; }
//= SFTime 3
function test() { for (i = 0; i < 3; i++) { continue; } return i; }
//= SFTime 12
function test() {
  n = 0;
  for (i = 0; i < 10; i++) { for (j = 0; j < 10; j++) { if (j > 2) break; n = n + 1; } if (i >= 3) break; }
  return n;
}
//= SFTime 5
function test() { for (;;) { while (1) { return 5; } } }
//= SFTime 4
function test() { for (i = 0; ; i += 2) if (i > 2) return i; }
//= SFTime 1
function test() { x = 1; while ("yes") { x = 2; break; } return x; }
//= SFTime 0
function test() { x = 0; if ("yes") x = 1; else x = 2; return x; }
//= SFTime 3
function test() { a = 2; if (a == 1) x = 1; else if (a == 2) x = 3; else x = 4; return x; }
//= SFTime 2
function test() { if (1) if (0) return 1; else return 2; return 3; }
//= SFTime 6
function f(n) { if (n > 0) { return n + f(n - 1); } return 0; }
function test() { return f(3); }
//= SFTime 55
function fib(n) { if (n < 2) return n; return fib(n - 1) + fib(n - 2); }
function test() { return fib(10); }
//= SFTime 1
function g() { }
function test() { x = 1; x = g(); return x; }
//= SFTime 2
function test() { if (1) { x = 1; break; x = 5; } x = x + 1; return x; }
//= unparsed
//! syntax error
//! syntax error
function test() { x = 1; { x = 2; } }
//= SFTime 1
function f(a) { return a; }
function test() { x = 1; y = f(x, x = 2); return x; }
//= none
//! Attempt to access an uninitialized variable
function f(a, b) { return b; }
function test() { return f(1); }
//= SFTime 7
//! Attempt to access an uninitialized variable
function count(n) { calls = calls; if (n == 7) return 7; }
function test() { for (i = 7; i < 8; i++) x = count(i); return x; }
//= SFTime 7
function keep(n) { if (n == 7) return 7; }
function test() { for (i = 7; i < 9; i++) x = keep(i); return x; }
//= SFTime 2000
//! Functions are called more than 2000 deep
function deep(n) { return deep(n + 1) + 1; }
function test() { x = 2000; x = deep(0); return x; }
//= SFTime 30
function test() { for (i = 0, s = 0; i < 5; i++, s += 2) s = s + i * 2; return s; }
