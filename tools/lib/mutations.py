"""Makes mutants of C++ sources: the same text with one small mistake in it.

The sources are taken apart by words only, relying on their format: a binary operator
stands between spaces, the braces of a block follow a closing parenthesis, and a
function's head begins at the start of a line.
"""
import collections
import re

Mutant = collections.namedtuple("Mutant", "file line source change start end text")
Token = collections.namedtuple("Token", "kind text start end")

TOKEN = re.compile(r"""
    (?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#[^\n]*|\[\[\w+\]\]|__attribute__\(\(.*?\)\)\)|\s+)
  | (?P<string>R"\(.*?\)"|"(?:\\.|[^"\\\n])*")
  | (?P<char>'(?:\\.|[^'\\\n])+')
  | (?P<number>(?:0[xX][0-9a-fA-F]+|\d+)[uUlL]*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|->|\+\+|--|&&|\|\||[=!<>+\-*/%&|^]=|<<|>>|::|.)
    """, re.VERBOSE | re.DOTALL | re.MULTILINE)

SWAPPED_SIGNS = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"],
    "<<": [">>"], ">>": ["<<"], "|": ["&"], "&": ["|"],
    "+=": ["-=", "="], "-=": ["+=", "="], "*=": ["+=", "="],
}
SWAPPED_WORDS = {
    "true": ["false"], "false": ["true"], "min": ["max"], "max": ["min"],
    "find": ["rfind"], "rfind": ["find"], "front": ["back"], "back": ["front"],
    "starts_with": ["ends_with"], "ends_with": ["starts_with"],
    "strchr": ["strrchr"], "stdout": ["stderr"], "stderr": ["stdout"],
    "remove_prefix": ["remove_suffix"], "remove_suffix": ["remove_prefix"],
    "unsigned": ["signed"],
}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "|=", "&="}
CONDITION_ENDS = {"&&", "||", ",", ";", "?", ":", "return"} | ASSIGNMENTS
SUM_ENDS = CONDITION_ENDS | {"+", "-", "<", ">", "<=", ">=", "==", "!=", "|", "<<", ">>"}
OPENING, CLOSING = "([{", ")]}"

CONTROL = {"if", "for", "while", "switch", "do", "return", "case", "default", "else", "struct",
           "enum", "using", "static_assert", "constexpr", "const", "static", "template"}
DECLARATION = re.compile(r"[\w:]+(<[^;=]*>)?[\s*&]+\w+\s*(=|;|\[|\{)")
FUNCTION_HEAD = re.compile(r"^(?:\[\[nodiscard\]\] )?(?:\w[\w:<>,* ]*?[\s*&]+)?(?P<name>\w+)\([^;{}]*\)\s*\{", re.MULTILINE)
CONSTANT = re.compile(r"^\s*(?:inline )?constexpr (?P<type>[\w:]+) (?P<name>[A-Z][A-Z0-9_]+)(?P<array>\[\])?",
                      re.MULTILINE)
ENUM = re.compile(r"enum class (?P<name>\w+)[^{]*\{(?P<values>[^}]*)\}")


def enums_of(texts):
    """The names of the values of every enum, by the enum's name."""
    found = {}
    for text in texts:
        for match in ENUM.finditer(text):
            values = re.sub(r"//[^\n]*", "", match["values"])
            found[match["name"]] = re.findall(r"^\s*(\w+)", values, re.MULTILINE)
    return found


def constants_of(text):
    """For each constant that text declares, the next one of the same type."""
    by_type = collections.defaultdict(list)
    for match in CONSTANT.finditer(text):
        by_type[match["type"], match["array"]].append(match["name"])
    return {name: names[(i + 1) % len(names)]
            for names in by_type.values() for i, name in enumerate(names) if len(names) > 1}


def next_number(text, step):
    digits = text.rstrip("uUlL")
    is_octal = re.fullmatch("0[0-7]+", digits)
    value = int(digits, 8 if is_octal else 0) + step
    style = "0{:o}" if is_octal else "{:#x}" if digits[:2] in ("0x", "0X") else "{}"
    return style.format(value) + text[len(digits):]


def next_character(text):
    if text == r"'\0'":
        return r"'\1'"
    if text.startswith("'\\"):
        return "'x'"
    return f"'{chr(ord(text[1]) + 1)}'"


def shortened(text):
    if text.startswith("R"):
        return f'R"({text[3:-3]})"' if len(text) > 5 else '"x"'
    body = re.findall(r"\\.|[^\\]", text[1:-1])
    return '"' + "".join(body[:-1]) + '"' if body else '"x"'


class Source:
    """One file's tokens, and where its brackets close."""

    def __init__(self, name, text, enums):
        self.name, self.text, self.enums = name, text, enums
        self.constants = constants_of(text)
        self.tokens = [Token(match.lastgroup, match.group(), match.start(), match.end())
                       for match in TOKEN.finditer(text) if match.lastgroup != "skip"]
        self.partner = self.pair_brackets()
        self.functions = [(match.start(), self.return_type(match), match)
                          for match in FUNCTION_HEAD.finditer(text)]
        self.mutants = []

    def pair_brackets(self):
        partner, stack = {}, []
        for i, token in enumerate(self.tokens):
            if token.kind == "sign" and token.text in OPENING:
                stack.append(i)
            elif token.kind == "sign" and token.text in CLOSING:
                partner[i] = stack.pop()
                partner[partner[i]] = i
        return partner

    def return_type(self, match):
        before = self.text[match.start():match.start("name")].strip()
        return before.removeprefix("[[nodiscard]] ").removeprefix("constexpr ").removeprefix("inline ")

    def add(self, start, end, new):
        old = self.text[start:end]
        change = f"{' '.join(old.split())} => {' '.join(new.split()) or 'nothing'}"
        line = self.text.count("\n", 0, start) + 1
        self.mutants.append(Mutant(self.name, line, self.text.splitlines()[line - 1].strip(), change,
                                   start, end, self.text[:start] + new + self.text[end:]))

    def replace(self, token, new):
        self.add(token.start, token.end, new)

    def replace_span(self, first, last, new):
        self.add(self.tokens[first].start, self.tokens[last].end, new)

    def span_text(self, first, last):
        return self.text[self.tokens[first].start:self.tokens[last].end]

    def is_binary(self, i):
        token = self.tokens[i]
        return self.text[token.start - 1].isspace() and self.text[token.end].isspace()

    def extent(self, i, step, ends):
        """The last token, from i in steps, before one that ends the expression."""
        brackets = OPENING if step < 0 else CLOSING
        at = i
        while 0 <= at + step < len(self.tokens):
            following = self.tokens[at + step]
            if following.text in brackets and following.kind == "sign":
                break
            if following.text in ends and (following.text not in "+-&*<>|" or self.is_binary(at + step)):
                break
            at += step
            if following.kind == "sign" and at in self.partner:
                at = self.partner[at]
        return at

    # What follows adds mutants for one token each.

    def mutate_literal(self, i):
        token = self.tokens[i]
        if token.kind == "string":
            self.replace(token, shortened(token.text))
        elif token.kind == "char":
            self.replace(token, next_character(token.text))
        else:
            self.replace(token, next_number(token.text, 1))
            if token.text.rstrip("uUlL") != "0":
                self.replace(token, next_number(token.text, -1))

    def mutate_word(self, i):
        token = self.tokens[i]
        previous = self.tokens[i - 1].text if i > 0 else ""
        for other in SWAPPED_WORDS.get(token.text, []):
            if token.text != "unsigned" or self.tokens[i + 1].text == "char":
                self.replace(token, other)
        if token.text in self.constants and self.tokens[i - 1].kind == "sign":
            self.replace(token, self.constants[token.text])
        if previous == "::" and self.tokens[i - 2].text in self.enums:
            for other in self.enums[self.tokens[i - 2].text]:
                if other != token.text:
                    self.replace(token, other)
        if token.text in ("if", "while"):
            self.mutate_condition(i + 1, token.text == "if")
        elif token.text == "for":
            self.mutate_loop(i + 1)
        elif token.text == "case":
            self.drop_case(i)
        elif token.text == "return":
            self.force_return(i)

    def mutate_condition(self, opening, is_if):
        closing = self.partner[opening]
        inside = self.span_text(opening + 1, closing - 1)
        news = ["false"]
        if is_if:
            news.append("true")
        if "&&" in inside or "||" in inside or not re.search(r" [=!<>]=? |^!", inside):
            news.append(f"!({inside})")  # else a swapped sign negates it
        for new in news:
            self.replace_span(opening + 1, closing - 1, new)

    def mutate_loop(self, opening):
        semicolons = [i for i in range(opening, self.partner[opening]) if self.tokens[i].text == ";"]
        if len(semicolons) == 2:
            self.replace_span(semicolons[0] + 1, semicolons[1] - 1, "false")

    def drop_case(self, i):
        last = i
        while self.tokens[last + 1].text not in ("case", "default", "}"):
            last += 1
            last = self.partner[last] if self.tokens[last].text in OPENING else last
        self.replace_span(i, last, "")

    def force_return(self, i):
        last = self.extent(i, 1, {";"})
        if last == i:
            return
        kind = [kind for start, kind, _ in self.functions if start < self.tokens[i].start][-1]
        if "*" in kind:
            values = ["nullptr"]
        elif kind in ("bool", "void"):  # void: from a lambda
            values = ["true", "false"]
        elif kind in self.enums:
            values = [f"{kind}::{value}" for value in self.enums[kind]]
        elif kind in ("int", "std::size_t", "std::uint64_t"):
            values = ["0", "1", "-1"][:3 if kind == "int" else 2]
        else:
            values = ["{}"]
        for value in values:
            self.replace_span(i + 1, last, value)

    def mutate_sign(self, i):
        token = self.tokens[i]
        if token.text in ("++", "--"):
            self.replace(token, "--" if token.text == "++" else "++")
        elif token.text == "!":
            self.replace(token, "")
        elif token.text == "?":
            first = self.extent(i, -1, CONDITION_ENDS - {"&&", "||"})
            for new in ("true", "false"):
                self.replace_span(first, i - 1, new)
        elif token.text in SWAPPED_SIGNS and self.is_binary(i):
            for other in SWAPPED_SIGNS[token.text]:
                self.replace(token, other)
            self.drop_operands(i)

    def drop_operands(self, i):
        sign = self.tokens[i].text
        if sign in ("&&", "||"):
            for first, last in ((self.extent(i, -1, CONDITION_ENDS), i - 1),
                                (i + 1, self.extent(i, 1, CONDITION_ENDS))):
                operand = self.span_text(first, last)
                self.replace_span(first, last, "true" if sign == "&&" else "false")
                if not operand.startswith("!") and not re.search(r" [=!<>]=? ", operand):
                    self.replace_span(first, last, "!" + operand)
        elif sign in ("+", "-"):
            self.replace_span(i, self.extent(i, 1, SUM_ENDS), "")
        elif sign == "|":
            self.replace_span(self.extent(i, -1, SUM_ENDS - {"<<"}), i - 1, "0")
            self.replace_span(i + 1, self.extent(i, 1, SUM_ENDS), "0")

    def drop_statement(self, i):
        """The statement that begins at token i, if it is one that can go."""
        first = self.tokens[i]
        if first.text in CONTROL or first.text in CLOSING or first.text in "([{;":
            return
        if first.text == "break" or DECLARATION.match(self.text, first.start):
            return
        self.replace_span(i, self.extent(i, 1, {";"}), "")

    def block_starts(self):
        """Tokens that begin a statement."""
        within = []  # for each bracket that is open, whether it is a block's
        for i, token in enumerate(self.tokens):
            if token.kind != "sign" or token.text not in "()[]{};":
                continue
            follows_block = False
            if token.text in OPENING:
                within.append(token.text == "{" and self.tokens[i - 1].text in (")", "else", "do"))
            elif token.text in CLOSING:
                follows_block = within.pop()
            starts = token.text in "{;" or follows_block
            if starts and within and within[-1]:
                yield i + 1

    def empty_functions(self):
        for _, kind, match in self.functions:
            if kind == "void":
                opening = next(i for i, token in enumerate(self.tokens) if token.end == match.end())
                if opening + 1 < self.partner[opening]:
                    self.replace_span(opening + 1, self.partner[opening] - 1, "")

    def mutate(self):
        for i, token in enumerate(self.tokens):
            if token.kind == "word":
                self.mutate_word(i)
            elif token.kind == "sign":
                self.mutate_sign(i)
            else:
                self.mutate_literal(i)
        for i in self.block_starts():
            self.drop_statement(i)
        self.empty_functions()
        unique = {mutant.text: mutant for mutant in reversed(self.mutants) if mutant.text != self.text}
        return sorted(unique.values(), key=lambda mutant: (mutant.start, mutant.end, mutant.change))


def mutants_of(name, text, enums):
    return Source(name, text, enums).mutate()
