// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "script/Scanner.h"
#include "script/SyntaxTree.h"

namespace tessel::script {

struct Function;
class VsParseTree;

/// Reads the text of a script into functions of a tree: recursive descent, with one token of look-ahead that is read
/// only when it is needed.
///
/// Statements end a syntax error: what is left of one is skipped, in the innermost list of statements that has one
/// already. Everything else that is wrong is reported and read on.
class Parser {
public:
  Parser(std::string_view text, VsParseTree& tree) : scanner(text), tree(tree) {}

  /// False after any report. Functions are compiled as they end.
  bool parse();

private:
  using Statements = std::vector<Stmt*>;

  // Constructs within one another that the stack is asked to bear.
  static constexpr int depthLimit = 1000;
  static constexpr int reportLimit = 1000;

  const Token& peek();
  bool at(Sign sign) { return peek().sign == sign; }
  Token take();
  bool accept(Sign sign);
  bool expect(Sign sign);
  bool syntaxError();
  bool tooDeep();
  bool fits(const Expr* expr);
  [[gnu::format(printf, 2, 3)]] void complain(const char* format, ...);
  bool recover();

  bool function();
  bool parameters();
  bool body(Statements& list);
  bool statementList(Statements& list);
  Stmt* statement();
  bool ifStatement(Stmt& stmt);
  bool forStatement(Stmt& stmt);
  bool whileStatement(Stmt& stmt);
  bool withStatement();
  bool condition(Expr*& expr);

  Expr* expressions();
  Expr* optionalExpressions(Sign end, bool& ok);
  Expr* expression(int level);
  Expr* unary();
  Expr* nested();
  Expr* postfix();
  Expr* primary();
  Expr* assignment(Expr* target);
  Expr* incDec(Expr* operand, Sign sign, bool isPrefix, int line);
  Expr* identifier(const Token& token);
  Expr* memberOrMethod(Expr* object, Owner owner, int line);
  Expr* functionCall(const Token& name);
  Expr* constructorCall();
  Expr* parseCall(const Constructor& constructor);
  bool arguments(Expr& expr);
  int constant(double number);
  int constant(std::string_view text);

  Expr* make(ExprKind kind, int line, Expr* a = nullptr, Expr* b = nullptr, Expr* c = nullptr);

  Scanner scanner;
  VsParseTree& tree;
  SyntaxTree nodes;  // of the function that is being read
  Function* current = nullptr;
  std::unordered_map<double, int> numbers;  // constants of the function
  Token ahead;
  bool hasAhead = false;
  bool isTarget = false;  // the last expression may stand before `=`
  bool stopped = false;   // nothing more can be read
  int depth = 0;          // of constructs within one another
  int sinceError = 3;     // tokens taken since the last syntax error
};

}  // namespace tessel::script
