// The base of visitors: sees every node and does nothing.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"

QORQL_ExpressionVisitor::~QORQL_ExpressionVisitor() = default;

void QORQL_ExpressionVisitor::visitExpression(const QORQL_Expression&) {}
void QORQL_ExpressionVisitor::visitExpressionTerm(const QORQL_ExpressionTerm&) {}
void QORQL_ExpressionVisitor::visitExpressionFactor(const QORQL_ExpressionFactor&) {}
void QORQL_ExpressionVisitor::visitComparison(const QORQL_Comparison&) {}
void QORQL_ExpressionVisitor::visitArithmetic(const QORQL_Arithmetic&) {}
void QORQL_ExpressionVisitor::visitTerm(const QORQL_Term&) {}
void QORQL_ExpressionVisitor::visitFactor(const QORQL_Factor&) {}
void QORQL_ExpressionVisitor::visitAssociation(const QORQL_Association&) {}
void QORQL_ExpressionVisitor::visitFunction(const QORQL_Function&) {}
