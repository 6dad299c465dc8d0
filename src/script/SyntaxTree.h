// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "script/Names.h"
#include "script/Token.h"

namespace tessel::script {

struct Function;

enum class ExprKind : std::uint8_t {
  number,
  string,
  local,
  global,
  assign,     ///< a = b
  arrayVar,   ///< a[b]
  arith,      ///< a sign b
  incDec,     ///< sign a, or a sign
  comma,      ///< a, b
  condExpr,   ///< a ? b : c
  unary,      ///< sign a: - ~ !
  logic,      ///< a sign b
  member,     ///< a.text, Math.text
  method,     ///< a.text(list), Math.text(list), Browser.text(list)
  call,       ///< function(list)
  construct,  ///< new constructor(list), parseInt(list), parseFloat(list)
  invalid     ///< what was complained of; it is never compiled
};

/// An expression. The target of `x += 1` is the target of an assignment and an operand at once.
struct Expr {
  ExprKind kind = ExprKind::invalid;
  Sign sign = Sign::end;
  Owner owner = Owner::ownOBJECT;
  Method method = Method::unknown;
  Property property = Property::other;
  bool isPrefix = false;
  int line = 0;
  bool mayAssign = false;  ///< to variables or fields: something below does, or what it calls
  int height = 1;          ///< of the tree below, this one included
  int index = -1;          ///< of a local, global, constant or member access
  int result = -1;         ///< where the compiler keeps its result
  int node =
      -1;  ///< and, of a member access that is read again, its node; of ?:, whether the first was chosen
  bool isReadAgain = false;  ///< of ?:, whose branch may change before the value is used
  Expr* a = nullptr;
  Expr* b = nullptr;
  Expr* c = nullptr;
  Function* function = nullptr;
  const Constructor* constructor = nullptr;
  std::vector<Expr*> list;

  bool isVariable() const {
    return kind == ExprKind::local || kind == ExprKind::global || kind == ExprKind::arrayVar ||
           kind == ExprKind::member;
  }
  /// Nothing happens when it is evaluated.
  bool isSimple() const {
    return kind == ExprKind::number || kind == ExprKind::string || kind == ExprKind::local ||
           kind == ExprKind::global;
  }
  /// Of expressions in commas the last one, whose value is theirs.
  Expr& last() {
    Expr* expr = this;
    while (expr->kind == ExprKind::comma) expr = expr->b;
    return *expr;
  }
};

enum class StmtKind : std::uint8_t { expression, result, choice, loop, leave, proceed, invalid };

/// A statement: `expr;`, `return expr;`, `if (expr) body else other`, `for (init; expr; step) body` (and `while`),
/// `break;`, `continue;`.
struct Stmt {
  StmtKind kind = StmtKind::invalid;
  bool hasOther = false;
  int line = 0;
  Expr* init = nullptr;
  Expr* expr = nullptr;
  Expr* step = nullptr;
  std::vector<Stmt*> body;
  std::vector<Stmt*> other;
};

/// Owns nodes, which never move, many at a time.
template <class Node> class NodeStore {
public:
  Node& add() {
    if (used == blockSize || blocks.empty()) {
      blocks.push_back(std::make_unique<Node[]>(blockSize));
      used = 0;
    }
    return blocks.back()[used++];
  }

private:
  static constexpr std::size_t blockSize = 64;
  std::vector<std::unique_ptr<Node[]>> blocks;
  std::size_t used = 0;
};

/// Owns what is read of one function.
struct SyntaxTree {
  NodeStore<Expr> expressions;
  NodeStore<Stmt> statements;
};

}  // namespace tessel::script
