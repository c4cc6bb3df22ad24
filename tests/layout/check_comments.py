"""Each public class and operation of the installed headers is told of in a comment: prints those that are not.

A comment stands above a declaration or behind it, and speaks for the declarations below it up to a blank line. What only
says what the language says anyway needs none: operations that are defaulted, deleted or those of a base, destructors,
copies, and constructors without arguments.

Run as check_comments.py ROOT HEADER...; the exit status is 1 when anything was printed.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import sys

import declarations


def speaks_for_itself(declaration):
    names = declaration.name.split("::")
    last, owner = names[-1], names[-2] if len(names) > 1 else ""
    text = declaration.text.replace(" ", "")
    if last.startswith("~") or "override" in declaration.text.split() or text.endswith(("=default", "=delete")):
        return True
    is_copy = any(f"({form}" in text for form in (f"const{owner}&", f"{owner}&&"))
    return (last in (owner, "operator=") and is_copy) or (last == owner and "()" in text)


def find_untold(header, found):
    is_told = False
    for declaration in found:
        if declaration.opens_paragraph or declaration.kind == "class":
            is_told = False
        is_told = is_told or bool(declaration.comment)
        if declaration.access == "public" and not is_told and not speaks_for_itself(declaration):
            yield (f"{header}:{declaration.line}: {declaration.name} has no comment: tell what it is for, who owns what, "
                   "what may be null, what it throws, what it costs, which threads may call it, as far as it is not plain")


def check(root, headers):
    for header in headers:
        yield from find_untold(header, declarations.read_file(os.path.join(root, header)))


if __name__ == "__main__":
    wrong = list(check(sys.argv[1], sys.argv[2:]))
    print("\n".join(wrong))
    sys.exit(1 if wrong else 0)
