"""Turns a public header into what Doxygen reads.

The headers are written for a reader of the source. Doxygen needs marks for what that reader sees:

- The comment on top describes the file, and its constants and macros that have no comment. Its first line names the
  floor.
- A comment directly above a declaration describes it, and all further declarations up to the next blank line.
- Text that is indented by three blanks is code.
- A paragraph such as "Owner:    the caller" is an item of a list.
- A trailing "///<" after the first line of a class describes the class.
- Constructors, special members, operators, overrides and members named as in the standard library do what these names say.

Every other declaration needs a comment in the header. Lines keep their numbers, except below a macro.
"""
import re

ITEM = re.compile(r"^(State|Owner|Threads|Failure|Requires|Returns|Throws|On Linux|On Windows):\s+(.*)$")
CODE_LINE = re.compile(r"[;{}]\s*(?://.*)?$")
CLASS = re.compile(r"^\s*(?:template <.*>\s*)?(?:class|struct)\b")
DOCUMENTED_CLASS = re.compile(r"^(\s*(?:template <.*> )?(?:class|struct|enum) .*?)\s*///<\s*(.*)$")
NOT_A_DECLARATION = re.compile(r"^\s*(?:[{}#]|(?:public|protected|private):|namespace |//|template <[^;]*>$|$)")
DECLARATION_BELOW = re.compile(r"^\s*(?:ORL_\w+|TVX\w+|inline|static|extern|constexpr|using|class|struct|enum)\b")
CONSTANT = re.compile(r"^(?:ORL_CONSTANT|(?:TVX\w+ )?inline constexpr|constexpr) (?:[\w:]+ )+k[A-Z]\w*")
MACRO = re.compile(r"^#\s*define \w+")

# Descriptions of uncommented members whose meaning follows from the name or from the language.
USUAL = [(re.compile(pattern), text) for pattern, text in [
    (r"^\s+(?:\w+ )*(\w+)\((?:const )?\1(?:<\w+>)?&?\s*\w*\).* = delete;", "Deleted: an object cannot be copied."),
    (r"^\s+(\w+)& operator=\(const \1&.*= delete;", "Deleted: an object cannot be assigned."),
    (r"^\s+(?:constexpr )?(\w+)\(const \1(?:<\w+>)?& ?\w*\)", "Copies the object."),
    (r"^\s+(?:constexpr )?(\w+)\(\1&& ?\w*\)", "Moves the object."),
    (r"^\s+(\w+)& operator=\(const \1& ?\w*\)", "Assigns a copy."),
    (r"^\s+(\w+)& operator=\(\1&& ?\w*\)", "Assigns by moving."),
    (r"^\s+(?:virtual )?~\w+\(\)", "Destroys the object."),
    (r"^\s+(?:constexpr )?(?!return\b)([A-Z]\w*)\(\)(?: noexcept)?(?: = default;|;| ?:| \{|$)",
     "Constructs the object in its initial state."),
    (r"^\s+(?:constexpr |explicit |ORL_API )*(?!return\b)([a-z]?[A-Z]\w*)\(.+\)(?: noexcept)?(?:;| : \w+[({].*|$)",
     "Constructs the object from its arguments."),
    (r"^\s+constexpr \w+&? operator[-+*/%]=?\(", "Calculates; the class says what an overflow does."),
    (r"^\s+unsigned __int64 m\w+(?:Current|Peak|Total);", "A counter; the structure describes it."),
    (r"^\s*(?:\w+ )*bool operator==\(", "Returns whether both are equal."),
    (r"^\s*(?:\w+ )*bool operator!=\(", "Returns whether they differ."),
    (r"^\s*(?:\w+ )*bool operator[<>]=?\(", "Compares in the order of the type."),
    (r"^\s*constexpr (\S+) operator\|\(\1 ", "Combines the flags."),
    (r"^\s+explicit operator bool\(\)", "Returns whether there is an object."),
    (r"^\s+(?:\w+ )*[sS]wap\(\w+& ", "Exchanges the contents of both objects."),
    (r"^\s+const char\* what\(\) const noexcept override", "Returns the text of the exception."),
    (r"^\s+.* override(?:;| \{.*|$)", "Implements the function of the base class."),
    (r"^\s+static constexpr Guid kInterfaceID\b", "The identifier of this interface."),
    (r"^\s+using (?:value_type|const_iterator) ", "As in the standard library."),
    (r"^\s+[\w:*&<>]+ (?:begin|end|size|empty|push_back|data|c_str|allocate|deallocate|operator new|operator delete)\(",
     "As in the standard library."),
]]


def escaped(text):
    """Returns the text with Doxygen's special characters escaped."""
    return re.sub(r"([\\@<>#])", r"\\\1", text)


def is_code(texts, start):
    """Returns whether the indented lines that begin here are code: one of them ends a statement or opens a block."""
    for text in texts[start:]:
        if text.strip() and not text.startswith("   "):
            return False
        if CODE_LINE.search(text):
            return True
    return False


class Marker:
    """Marks the code and the lists of one comment."""

    def __init__(self):
        self.result, self.in_code, self.in_item = [], False, False

    def end_code(self):
        if self.in_code:
            self.result[-1] += " @endcode"
            self.in_code = False

    def add_prose(self, text, indented):
        text = escaped(text)
        item = ITEM.match(text.strip())
        if item:
            text, self.in_item = f" - **{item[1]}:** {item[2]}", True
        elif self.in_item and indented:
            text = "   " + text.strip()
        else:
            self.in_item = False
        self.result.append(text)

    def marked(self, texts):
        """Returns the texts with marks, in the same number of lines."""
        for number, text in enumerate(texts):
            indented = text.startswith("   ") and text.strip() != ""
            if text.strip() and not indented:
                self.end_code()
            if self.in_code:
                self.result.append(text)
            elif indented and not self.in_item and is_code(texts, number):
                self.result.append(" @code{.cpp} " + text)
                self.in_code = True
            else:
                self.add_prose(text, indented)
        self.end_code()
        return self.result


def marked(texts):
    return Marker().marked(texts)


def comment_end(lines, start):
    """Returns the line after the run of comment lines that begins at start."""
    end = start
    while end < len(lines) and re.match(r"^\s*//(?:/?)(?![/<])", lines[end]):
        end += 1
    return end


def comment_texts(lines):
    return [re.sub(r"^\s*///?", "", line) for line in lines]


def one_line(texts):
    return "/** " + " \\ilinebr ".join(texts) + " */"


class Braces:
    """Counts brackets line by line, to find the end of a declaration."""

    def __init__(self):
        self.depth, self.is_open = 0, False

    def add(self, line):
        code = re.sub(r'"(?:\\.|[^"\\])*"', "", re.sub(r"\s*//.*$", "", line)).rstrip()
        self.depth += sum(code.count(char) for char in "({") - sum(code.count(char) for char in ")}")
        self.is_open = self.depth > 0 or not code.endswith((";", "}"))


class Filter:
    def __init__(self, lines):
        self.lines = lines
        self.position = comment_end(lines, 0)
        self.result = []
        self.file_texts = self.take_file_comment()
        self.texts = None          # the comment that applies until the next blank line
        self.indent = ""
        self.is_fresh = False      # nothing stands between the comment and this line
        self.class_texts = None
        self.in_class_head = False
        self.declaration = Braces()

    def take_file_comment(self):
        texts = comment_texts(self.lines[:self.position])
        floor = re.match(r" Floor: (\w+)", texts[0]) if texts else None
        texts = marked(texts[1:] if floor else texts)
        shown = [" @file", *texts] if floor else [f" @file \\ilinebr{texts[0]}", *texts[1:]] if texts else []
        if floor:
            shown[-1] += f" \\ilinebr \\ilinebr Floor: {floor[1]}."
        self.result = ["///" + text for text in shown]
        return texts

    def run(self):
        while self.position < len(self.lines):
            line = self.lines[self.position]
            end = comment_end(self.lines, self.position)
            if end > self.position and self.is_documentation(line, end):
                self.take_comment(end)
                continue
            self.position += 1
            self.add(line)
        return self.result

    def is_documentation(self, line, end):
        below = self.lines[end] if end < len(self.lines) else ""
        return line.lstrip().startswith("///") or DECLARATION_BELOW.match(below) or MACRO.match(below)

    def take_comment(self, end):
        line = self.lines[self.position]
        self.indent = re.match(r"\s*", line)[0]
        self.texts = marked(comment_texts(self.lines[self.position:end]))
        self.result += [f"{self.indent}///{text}" for text in self.texts]
        self.position, self.is_fresh, self.declaration = end, True, Braces()

    def add(self, line):
        of_class = DOCUMENTED_CLASS.match(line)
        if of_class:
            self.texts = marked([" " + of_class[2]])
            self.in_class_head = CLASS.match(line) is not None
            line = f"{one_line(self.texts)} {of_class[1]}"
            self.class_texts, self.texts = self.texts, None
        elif not line.strip():
            self.texts = None
        elif MACRO.match(line):
            if not self.is_fresh:
                self.result.append(one_line(self.texts or self.file_texts))
        elif CLASS.match(line) or self.in_class_head:
            self.in_class_head = not line.rstrip().endswith((";", "{", "}"))
            if self.texts is not None:
                self.class_texts, self.texts = self.texts, None
        else:
            line = self.declared(line)
        self.is_fresh = self.is_fresh and bool(re.match(r"^\s*template <", line))
        self.result.append(line)

    def declared(self, line):
        if re.match(r"^\s+enum Type\b", line) and self.texts is None and self.class_texts:
            texts, self.class_texts = self.class_texts, None
            return f"{one_line(texts)} {line}"
        if self.declaration.is_open:
            self.declaration.add(line)
            return line
        if NOT_A_DECLARATION.match(line):
            return line
        self.declaration = Braces()
        self.declaration.add(line)
        return self.with_comment(line)

    def with_comment(self, line):
        if "///<" in line:
            declared, _, text = line.partition("///<")
            return f"{declared}///<{escaped(text)}"
        if self.is_fresh:
            return line
        if self.texts is not None:
            return f"{one_line(self.texts)} {line}" if line.startswith(self.indent) else line
        if CONSTANT.match(line):
            return f"{one_line(self.file_texts)} {line}"
        usual = next((text for pattern, text in USUAL if pattern.match(line)), None)
        return f"/** {usual} */ {line}" if usual else line


def for_doxygen(header):
    """Returns the text of a header with Doxygen's marks."""
    return "\n".join(Filter(header.split("\n")).run())
