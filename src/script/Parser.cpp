// SPDX-License-Identifier: BSD-3-Clause
#include "script/Parser.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include <tessel/toolkit/Scoped.h>

#include "script/Compiler.h"
#include "script/VsParseTree.h"

namespace tessel::script {

bool Parser::parse() {
  while (!at(Sign::end) && !stopped)
    if (!function()) break;
  return tree.errors() == 0;
}

const Token& Parser::peek() {
  if (!hasAhead) {
    ahead = scanner.next();
    hasAhead = true;
    if (scanner.sawLongToken()) {
      tree.postLongToken(scanner.line());
      stopped = true;
    }
  }
  return ahead;
}

Token Parser::take() {
  peek();
  hasAhead = false;
  ++sinceError;
  return ahead;
}

bool Parser::accept(Sign sign) {
  if (!at(sign)) return false;
  take();
  return true;
}

bool Parser::expect(Sign sign) { return accept(sign) || syntaxError(); }

// An error that follows on another one is not news.
bool Parser::syntaxError() {
  peek();
  if (sinceError >= 3) complain("syntax error");
  sinceError = 0;
  return false;
}

bool Parser::tooDeep() {
  complain("yacc stack overflow");
  stopped = true;
  return false;
}

void Parser::complain(const char* format, ...) {
  if (stopped) return;
  std::va_list arguments;
  va_start(arguments, format);
  char text[2 * Scanner::tokenLimit];
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  tree.yyerror(text, scanner.currentLine(), scanner.line());
  stopped = tree.errors() >= reportLimit;
}

static bool beginsStatement(Sign sign) {
  switch (sign) {
    case Sign::number:
    case Sign::string:
    case Sign::identifier:
    case Sign::minus:
    case Sign::complement:
    case Sign::logicalNot:
    case Sign::increment:
    case Sign::decrement:
    case Sign::openParenthesis:
    case Sign::breakWord:
    case Sign::continueWord:
    case Sign::forWord:
    case Sign::ifWord:
    case Sign::newWord:
    case Sign::returnWord:
    case Sign::whileWord:
    case Sign::withWord:
    case Sign::mathWord:
    case Sign::browserWord:
    case Sign::parseIntWord:
    case Sign::parseFloatWord:
      return true;
    default:
      return false;
  }
}

// Skips to what may follow a statement.
bool Parser::recover() {
  while (!stopped && !at(Sign::closeBrace) && !beginsStatement(peek().sign)) {
    if (at(Sign::end)) return false;
    hasAhead = false;
  }
  return !stopped;
}

// The name is known while the body is read, so that a function may call itself.
bool Parser::function() {
  if (!expect(Sign::functionWord)) return false;
  if (!at(Sign::identifier)) return syntaxError();
  current = &tree.beginFunction(std::string(take().text));
  nodes = {};
  numbers.clear();
  Statements statements;
  const bool ok =
      expect(Sign::openParenthesis) && parameters() && expect(Sign::closeParenthesis) && body(statements);
  if (ok && tree.errors() == 0) Compiler(*current).compile(statements);
  current = nullptr;
  return ok;
}

// The list may begin with a comma.
bool Parser::parameters() {
  if (at(Sign::closeParenthesis)) return true;
  accept(Sign::comma);
  do {
    if (!at(Sign::identifier)) return syntaxError();
    current->addVariable(std::string(take().text));
    ++current->numArgs;
  } while (accept(Sign::comma));
  return true;
}

bool Parser::body(Statements& list) {
  if (accept(Sign::openBrace)) return statementList(list);
  Stmt* one = statement();
  if (one) list.push_back(one);
  return one != nullptr;
}

bool Parser::statementList(Statements& list) {
  while (!accept(Sign::closeBrace)) {
    if (Stmt* one = statement()) {
      list.push_back(one);
    } else if (list.empty() || !recover()) {
      return false;
    }
  }
  return true;
}

Stmt* Parser::statement() {
  const ScopedValue deeper(depth, depth + 1);
  if (depth > depthLimit) {
    tooDeep();
    return nullptr;
  }
  Stmt& stmt = nodes.statements.add();
  stmt.line = peek().line;
  bool ok = false;
  switch (ahead.sign) {
    case Sign::ifWord:
      return ifStatement(stmt) ? &stmt : nullptr;
    case Sign::forWord:
      return forStatement(stmt) ? &stmt : nullptr;
    case Sign::whileWord:
      return whileStatement(stmt) ? &stmt : nullptr;
    case Sign::withWord:
      return withStatement() ? &stmt : nullptr;
    case Sign::breakWord:
    case Sign::continueWord:
      stmt.kind = take().sign == Sign::breakWord ? StmtKind::leave : StmtKind::proceed;
      ok = true;
      break;
    case Sign::returnWord:
      take();
      stmt.kind = StmtKind::result;
      stmt.expr = optionalExpressions(Sign::semicolon, ok);
      break;
    default:
      stmt.kind = StmtKind::expression;
      stmt.expr = expressions();
      ok = stmt.expr != nullptr;
  }
  return ok && expect(Sign::semicolon) ? &stmt : nullptr;
}

bool Parser::condition(Expr*& expr) {
  if (!expect(Sign::openParenthesis)) return false;
  expr = expressions();
  return expr && expect(Sign::closeParenthesis);
}

bool Parser::ifStatement(Stmt& stmt) {
  take();
  stmt.kind = StmtKind::choice;
  if (!condition(stmt.expr) || !body(stmt.body)) return false;
  stmt.hasOther = accept(Sign::elseWord);
  return !stmt.hasOther || body(stmt.other);
}

bool Parser::whileStatement(Stmt& stmt) {
  take();
  stmt.kind = StmtKind::loop;
  return condition(stmt.expr) && body(stmt.body);
}

bool Parser::forStatement(Stmt& stmt) {
  take();
  stmt.kind = StmtKind::loop;
  if (!expect(Sign::openParenthesis)) return false;
  const bool beginsWithName = at(Sign::identifier);
  isTarget = false;
  bool ok = true;
  stmt.init = optionalExpressions(Sign::semicolon, ok);
  if (!ok) return false;
  if (at(Sign::inWord) && beginsWithName && isTarget &&
      (stmt.init->kind == ExprKind::local || stmt.init->kind == ExprKind::global)) {
    take();
    if (!expressions() || !expect(Sign::closeParenthesis) || !body(stmt.body)) return false;
    complain("<for..in> statement not implemented yet");
    return true;
  }
  ok = expect(Sign::semicolon);
  if (ok) stmt.expr = optionalExpressions(Sign::semicolon, ok);
  ok = ok && expect(Sign::semicolon);
  if (ok) stmt.step = optionalExpressions(Sign::closeParenthesis, ok);
  return ok && expect(Sign::closeParenthesis) && body(stmt.body);
}

bool Parser::withStatement() {
  take();
  Statements list;
  if (!expect(Sign::openParenthesis) || !expression(0) || !expect(Sign::closeParenthesis) || !body(list))
    return false;
  complain("<with> statement not implemented yet");
  return true;
}

}  // namespace tessel::script
