# The headers that are installed: what a program that embeds the engine, or an object manager that
# loads it, includes. All others are the libraries' own and may change at any time.
# SPDX-License-Identifier: Apache-2.0

# The platform interface, which the object model implements.
file(GLOB_RECURSE QORQL_PLATFORM_HEADERS CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} include/*.h)

# The language with its parse tree, the result table, and what asks a statement or a filter.
set(QORQL_ENGINE_HEADERS
    CQLFilterSet CQLPrecisionCode CQLQueryException CQLQueryFault CQLQueryStatement CQLQueryValidator
    QORQL_Arithmetic QORQL_Association QORQL_AssociationTie QORQL_ClassInfo QORQL_Comparison QORQL_DataRow
    QORQL_DataTable QORQL_Evaluatable QORQL_Exception QORQL_Executable QORQL_ExecutionMonitor QORQL_Expression
    QORQL_ExpressionFactor QORQL_ExpressionTerm QORQL_ExpressionVisitor QORQL_Factor QORQL_Fault QORQL_FormatClause
    QORQL_FromClause QORQL_FromSpecifier QORQL_Function QORQL_FunctionFinder QORQL_FunctionID QORQL_Helper
    QORQL_IdentifierFinder QORQL_JoinType QORQL_Lexer QORQL_Operator QORQL_OrderByClause QORQL_OrderByHelper
    QORQL_ParseException QORQL_Query QORQL_Scanner QORQL_SelectList QORQL_SelectedEntry QORQL_Symbol
    QORQL_SymbolTable QORQL_TableHeader QORQL_Term QORQL_Token QORQL_Version QORQL_WhereClause
    Explain/QORQL_Explanation Explain/QORQL_Surprises Face/QORQL_Hint Face/QORQL_Statement Out/QORQL_ResultReader)
list(TRANSFORM QORQL_ENGINE_HEADERS REPLACE "(.+)" "Cimom/QORQL/\\1.h")

# Starting an object manager, filling it with declarations, MOF and providers.
set(QORQL_EMBEDDED_HEADERS
    Embedded/CimDeclarationRefusal Embedded/CimDeclarationSink Embedded/CimDeclarationSource Embedded/CimDeclarations
    Embedded/EmbeddedObjectManager Embedded/InstanceProvider Mof/MofCache Mof/MofError Mof/MofInput Mof/MofLoader
    Providers/LinuxProviders)
list(TRANSFORM QORQL_EMBEDDED_HEADERS REPLACE "(.+)" "Cimom/\\1.h")

# Lays headers of the tree down below a folder, include/ at its root.
function(qorql_install_headers folder)
  foreach(header ${ARGN})
    cmake_path(GET header PARENT_PATH place)
    string(REGEX REPLACE "^include/?" "" place "${place}")
    install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${folder}/${place})
  endforeach()
endfunction()
