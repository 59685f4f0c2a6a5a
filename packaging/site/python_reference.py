#!/usr/bin/env python3
"""Writes the reference of the Python package as a page: python_reference.py BUILD, the folder that it is imported from.

What a module's __all__ names is public; each of it must have a docstring, and so must each public method and property.
Attributes are documented by the string behind them.
"""
import ast
import importlib
import inspect
import pathlib
import sys

MODULES = ["rack", "phy", "registers", "names", "batch", "services", "limits", "errors", "codes", "events", "lab",
           "pytest"]
SOURCE = pathlib.Path(__file__).resolve().parents[2] / "python" / "orvane"
undocumented = []


def doc_of(node, name):
    """The docstring, or a complaint."""
    text = ast.get_docstring(node)
    if not text:
        undocumented.append(name)
    return text or ""


def shown(text):
    """A docstring as Markdown: what is indented more is shown as it is, and so are tables of words."""
    paragraphs = []
    for paragraph in text.split("\n\n"):
        lines = paragraph.split("\n")
        as_it_is = any(line.startswith((" ", ">>>", "...")) or "   " in line.strip() for line in lines)
        paragraphs.append("```text\n" + "\n".join(lines) + "\n```" if as_it_is else paragraph)
    return "\n\n".join(paragraphs)


def signature(function):
    """Arguments and result, without self."""
    arguments = function.args
    if arguments.args and arguments.args[0].arg in ("self", "cls"):
        arguments.args = arguments.args[1:]
    result = f" -> {ast.unparse(function.returns)}" if function.returns is not None else ""
    return f"({ast.unparse(arguments)}){result}"


def is_marked(function, mark):
    """Whether a decorator of that name stands before it."""
    return any(ast.unparse(each).split(".")[-1] == mark for each in function.decorator_list)


def attributes(node):
    """Annotated or assigned names of a class, with the string behind each; of its constructor, too."""
    inits = [each for each in node.body if isinstance(each, ast.FunctionDef) and each.name == "__init__"]
    for body in (node.body, *(each.body for each in inits)):
        for each, after in zip(body, [*body[1:], None]):
            target = getattr(each, "target", None) or (getattr(each, "targets", None) or [None])[0]
            name = getattr(target, "attr", None) or getattr(target, "id", "_")
            text = after.value.value if isinstance(after, ast.Expr) and isinstance(after.value, ast.Constant) else ""
            if not name.startswith("_") and (body is node.body or text):
                kind = f": {ast.unparse(each.annotation)}" if isinstance(each, ast.AnnAssign) else ""
                value = f" = {ast.unparse(each.value)}" if each.value is not None and body is node.body else ""
                yield f"{name}{kind}{value}", text


def class_page(node, name):
    """A class with its public members."""
    bases = [ast.unparse(each) for each in node.bases]
    print(f"### {name}{'(' + ', '.join(bases) + ')' if bases else ''}\n\n{shown(doc_of(node, name))}\n")
    for line, text in attributes(node):
        print(f"- `{line}`" + (f": {text}" if text else ""))
    print()
    for each in node.body:
        if not isinstance(each, (ast.FunctionDef, ast.AsyncFunctionDef)) or each.name.startswith("_"):
            continue
        if is_marked(each, "overload") or is_marked(each, "setter"):
            continue
        head = each.name if is_marked(each, "property") else each.name + signature(each)
        print(f"#### `{head}`\n\n{shown(doc_of(each, f'{name}.{each.name}'))}\n")


def compiled_page(name, thing):
    """A class of the compiled module."""
    print(f"### {name}\n\n{inspect.getdoc(thing) or undocumented.append(name)}\n")


def module_page(module):
    """A module's public names."""
    tree = ast.parse((SOURCE / f"{module}.py").read_text(encoding="utf-8"))
    defined = {each.name: each for each in tree.body if isinstance(each, (ast.ClassDef, ast.FunctionDef))}
    loaded = importlib.import_module(f"orvane.{module}")
    print(f"## orvane.{module}\n\n{shown(doc_of(tree, module))}\n")
    for name in loaded.__all__:
        node = defined.get(name)
        if isinstance(node, ast.ClassDef):
            class_page(node, name)
        elif node is not None:
            print(f"### `{name}{signature(node)}`\n\n{shown(doc_of(node, name))}\n")
        elif inspect.isclass(getattr(loaded, name)) and getattr(loaded, name).__module__ == "orvane._orvane":
            compiled_page(name, getattr(loaded, name))
    for name, node in defined.items():
        if isinstance(node, ast.FunctionDef) and is_marked(node, "fixture"):
            print(f"### fixture `{name}`\n\n{shown(doc_of(node, name))}\n")


def main():
    sys.path.insert(0, sys.argv[1])
    print("# The Python package, name by name\n\nMade of the docstrings; `help(orvane.Phy)` shows the same. "
          "[Python](python.md) is where to begin.\n")
    for module in MODULES:
        module_page(module)
    if undocumented:
        sys.exit("without a docstring: " + ", ".join(undocumented))


if __name__ == "__main__":
    main()
