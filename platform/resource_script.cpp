/*
** platform/resource_script.cpp: the resource-script reader (preprocessor, lexer, parser).
** Turns the text of a .rc file into dialog templates, or into one error naming file and line.
*/
#include "platform/resource_script.h"

#include <cctype>
#include <climits>
#include <cstdint>
#include <deque>
#include <map>

namespace platform {

namespace {

constexpr int MAX_INCLUDE_DEPTH = 16;
constexpr int MAX_MACRO_EXPANSIONS = 64;   /* in a row at one place: a recursive macro */
constexpr int MAX_EXPRESSION_DEPTH = 64;

struct Token {
    enum Kind { Identifier, Number, String, Punct } kind = Punct;
    std::string text;       /* name, unescaped string, or punctuation */
    long long value = 0;    /* Number */
    const std::string *file = nullptr;
    int line = 0;
};

struct ScriptError {
    std::string message;    /* "file:line: text" */
};

[[noreturn]] void fail(const std::string &file, int line, const std::string &message)
{
    throw ScriptError{file + ":" + std::to_string(line) + ": " + message};
}

[[noreturn]] void fail(const Token &at, const std::string &message)
{
    fail(*at.file, at.line, message);
}

std::string upper(std::string s)
{
    for (char &c : s)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

bool isKeyword(const Token *t, const char *keyword)
{
    return t && t->kind == Token::Identifier && upper(t->text) == keyword;
}

bool isPunct(const Token *t, const char *p)
{
    return t && t->kind == Token::Punct && t->text == p;
}

std::string describe(const Token *t)
{
    if (!t)
        return "end of file";
    switch (t->kind) {
    case Token::String: return "\"" + t->text + "\"";
    case Token::Number: return std::to_string(t->value);
    default: return "'" + t->text + "'";
    }
}

/* ---- Lexer: one logical line (comments already removed) into tokens ---- */

void lexLine(const std::string &text, const std::string *file, int line, std::vector<Token> &out)
{
    size_t i = 0;
    const size_t n = text.size();
    auto at = [&](size_t k) { return k < n ? text[k] : '\0'; };
    while (i < n) {
        unsigned char c = static_cast<unsigned char>(text[i]);
        if (std::isspace(c)) {
            ++i;
            continue;
        }
        Token t;
        t.file = file;
        t.line = line;
        bool wide = (c == 'L' || c == 'l') && at(i + 1) == '"';
        if (c == '"' || wide) {
            if (wide)
                ++i;
            ++i;
            std::string value;
            for (;;) {
                if (i >= n)
                    fail(*file, line, "unterminated string");
                char d = text[i++];
                if (d == '"') {
                    if (at(i) == '"') {     /* "" stands for one quote */
                        value += '"';
                        ++i;
                        continue;
                    }
                    break;
                }
                if (d != '\\' || i >= n) {
                    value += d;
                    continue;
                }
                char e = text[i++];
                switch (e) {
                case 'n': value += '\n'; break;
                case 't': value += '\t'; break;
                case 'r': value += '\r'; break;
                case 'a': value += '\a'; break;
                case '\\': value += '\\'; break;
                case '"': value += '"'; break;
                case 'x': case 'X': {
                    int v = 0, digits = 0;
                    while (digits < 2 && std::isxdigit(static_cast<unsigned char>(at(i)))) {
                        char h = text[i++];
                        v = v * 16 + (std::isdigit(static_cast<unsigned char>(h)) ? h - '0'
                                                                                   : std::tolower(h) - 'a' + 10);
                        ++digits;
                    }
                    value += static_cast<char>(v);
                    break;
                }
                default:
                    if (e >= '0' && e <= '7') {
                        int v = e - '0', digits = 1;
                        while (digits < 3 && at(i) >= '0' && at(i) <= '7') {
                            v = v * 8 + (text[i++] - '0');
                            ++digits;
                        }
                        value += static_cast<char>(v);
                    } else {            /* an unknown escape stays as written */
                        value += '\\';
                        value += e;
                    }
                }
            }
            t.kind = Token::String;
            t.text = value;
        } else if (std::isalpha(c) || c == '_') {
            size_t start = i;
            while (i < n && (std::isalnum(static_cast<unsigned char>(text[i])) || text[i] == '_'))
                ++i;
            t.kind = Token::Identifier;
            t.text = text.substr(start, i - start);
        } else if (std::isdigit(c)) {
            size_t start = i;
            unsigned long long v = 0;
            bool overflow = false;
            if (c == '0' && (at(i + 1) == 'x' || at(i + 1) == 'X')) {
                i += 2;
                if (!std::isxdigit(static_cast<unsigned char>(at(i))))
                    fail(*file, line, "malformed number '" + text.substr(start, i - start) + "'");
                while (std::isxdigit(static_cast<unsigned char>(at(i)))) {
                    char h = text[i++];
                    overflow |= v > 0x0FFFFFFFFFFFFFFFULL;
                    v = v * 16 + (std::isdigit(static_cast<unsigned char>(h)) ? h - '0' : std::tolower(h) - 'a' + 10);
                }
            } else {
                while (std::isdigit(static_cast<unsigned char>(at(i)))) {
                    overflow |= v > 0x0CCCCCCCCCCCCCCCULL;
                    v = v * 10 + (text[i++] - '0');
                }
            }
            while (at(i) == 'L' || at(i) == 'l' || at(i) == 'U' || at(i) == 'u')
                ++i;
            if (std::isalnum(static_cast<unsigned char>(at(i))) || at(i) == '_')
                fail(*file, line, "malformed number '" + text.substr(start, i + 1 - start) + "'");
            if (overflow || v > 0xFFFFFFFFULL)
                fail(*file, line, "number too large '" + text.substr(start, i - start) + "'");
            t.kind = Token::Number;
            t.value = static_cast<long long>(v);
            t.text = text.substr(start, i - start);
        } else {
            static const char *const twoChar[] = {"&&", "||", "==", "!=", "<=", ">=", "<<", ">>"};
            std::string two = text.substr(i, 2);
            bool matched = false;
            for (const char *p : twoChar)
                if (two == p) {
                    t.text = two;
                    i += 2;
                    matched = true;
                    break;
                }
            if (!matched) {
                if (std::string(",|&()+-*/%~!{}<>^").find(static_cast<char>(c)) == std::string::npos)
                    fail(*file, line, std::string("unexpected character '") + static_cast<char>(c) + "'");
                t.text = std::string(1, static_cast<char>(c));
                ++i;
            }
            t.kind = Token::Punct;
        }
        out.push_back(std::move(t));
    }
}

/* ---- Macro table and token stream with macro expansion ---- */

using MacroTable = std::map<std::string, std::vector<Token>>;

class TokenStream {
public:
    TokenStream(const std::vector<Token> &tokens, const MacroTable &macros)
        : tokens_(tokens), macros_(macros) {}

    const Token *peek()
    {
        int expansions = 0;
        for (;;) {
            const Token *t = pending_.empty() ? (pos_ < tokens_.size() ? &tokens_[pos_] : nullptr)
                                              : &pending_.front();
            if (!t || t->kind != Token::Identifier)
                return t;
            auto macro = macros_.find(t->text);
            if (macro == macros_.end())
                return t;
            if (++expansions > MAX_MACRO_EXPANSIONS)
                fail(*t, "macro '" + t->text + "' expands into itself");
            Token use = *t;
            if (pending_.empty())
                ++pos_;
            else
                pending_.pop_front();
            for (auto it = macro->second.rbegin(); it != macro->second.rend(); ++it) {
                Token replacement = *it;
                replacement.file = use.file;    /* errors point at the place of use */
                replacement.line = use.line;
                pending_.push_front(replacement);
            }
        }
    }

    Token next(const char *what)
    {
        const Token *t = peek();
        if (!t)
            fail(lastFile(), lastLine_, std::string("unexpected end of file, expected ") + what);
        Token result = *t;
        if (pending_.empty())
            ++pos_;
        else
            pending_.pop_front();
        lastLine_ = result.line;
        lastFile_ = result.file;
        return result;
    }

    bool accept(const char *punct)
    {
        if (!isPunct(peek(), punct))
            return false;
        next(punct);
        return true;
    }

    void expect(const char *punct)
    {
        const Token *t = peek();
        if (!isPunct(t, punct)) {
            if (t)
                fail(*t, std::string("expected '") + punct + "', found " + describe(t));
            fail(lastFile(), lastLine_, std::string("expected '") + punct + "' before end of file");
        }
        next(punct);
    }

    const std::string &lastFile() const { return lastFile_ ? *lastFile_ : noFile_; }
    int lastLine() const { return lastLine_; }

private:
    const std::vector<Token> &tokens_;
    const MacroTable &macros_;
    size_t pos_ = 0;
    std::deque<Token> pending_;
    const std::string *lastFile_ = nullptr;
    int lastLine_ = 0;
    std::string noFile_;
};

/* ---- Integer expressions (C precedence); `unknown` decides about names that are no macro ---- */

enum class UnknownNames { AreZero, AreErrors };

class ExpressionReader {
public:
    ExpressionReader(TokenStream &in, UnknownNames unknown) : in_(in), unknown_(unknown) {}

    long long full() { return binary(0); }

    /* One term of a style list: everything that binds tighter than '|'. */
    long long term() { return binary(1); }

private:
    /* Levels from loosest: || && | ^ & equality relational shift additive multiplicative. */
    static int levelOf(const Token *t)
    {
        if (!t || t->kind != Token::Punct)
            return -1;
        static const std::map<std::string, int> levels = {
            {"||", 0}, {"&&", 0}, {"|", 0}, {"^", 1}, {"&", 2}, {"==", 3}, {"!=", 3}, {"<", 4},
            {">", 4}, {"<=", 4}, {">=", 4}, {"<<", 5}, {">>", 5}, {"+", 6}, {"-", 6}, {"*", 7},
            {"/", 7}, {"%", 7}};
        auto it = levels.find(t->text);
        return it == levels.end() ? -1 : it->second;
    }

    long long binary(int minLevel)
    {
        Depth guard(*this);
        long long left = unary();
        for (;;) {
            const Token *op = in_.peek();
            int level = levelOf(op);
            if (level < minLevel)
                return left;
            Token o = in_.next("an operator");
            long long right = binary(level + 1);
            const std::string &s = o.text;
            if (s == "||") left = left || right;
            else if (s == "&&") left = left && right;
            else if (s == "|") left |= right;
            else if (s == "^") left ^= right;
            else if (s == "&") left &= right;
            else if (s == "==") left = left == right;
            else if (s == "!=") left = left != right;
            else if (s == "<") left = left < right;
            else if (s == ">") left = left > right;
            else if (s == "<=") left = left <= right;
            else if (s == ">=") left = left >= right;
            else if (s == "<<") left = (right < 0 || right > 62) ? 0 : left << right;
            else if (s == ">>") left = (right < 0 || right > 62) ? 0 : left >> right;
            else if (s == "+") left += right;
            else if (s == "-") left -= right;
            else if (s == "*") left = static_cast<long long>(static_cast<uint32_t>(left) * static_cast<uint32_t>(right));
            else {
                if (right == 0)
                    fail(o, "division by zero");
                left = s == "/" ? left / right : left % right;
            }
            left = word(left);
        }
    }

    /* Values are 32-bit words in a script: keep them in [-2^31, 2^32) so nothing overflows. */
    static long long word(long long v)
    {
        return (v >= INT32_MIN && v <= static_cast<long long>(UINT32_MAX)) ? v : static_cast<uint32_t>(v);
    }

    long long unary()
    {
        Depth guard(*this);
        const Token *t = in_.peek();
        if (isPunct(t, "-")) { in_.next("-"); return word(-unary()); }
        if (isPunct(t, "+")) { in_.next("+"); return unary(); }
        if (isPunct(t, "~")) { in_.next("~"); return static_cast<uint32_t>(~unary()); }
        if (isPunct(t, "!")) { in_.next("!"); return !unary(); }
        return primary();
    }

    long long primary()
    {
        Token t = in_.next("a number");
        if (t.kind == Token::Number)
            return t.value;
        if (t.kind == Token::Punct && t.text == "(") {
            long long v = binary(0);
            in_.expect(")");
            return v;
        }
        if (t.kind == Token::Identifier) {
            if (auto v = predefinedSymbol(t.text))
                return *v;
            if (unknown_ == UnknownNames::AreZero)
                return 0;
            fail(t, "unknown identifier '" + t.text + "'");
        }
        fail(t, "expected a number, found " + describe(&t));
    }

    struct Depth {
        explicit Depth(ExpressionReader &r) : r_(r)
        {
            if (++r_.depth_ > MAX_EXPRESSION_DEPTH)
                fail(r_.in_.lastFile(), r_.in_.lastLine(), "expression nested too deeply");
        }
        ~Depth() { --r_.depth_; }
        ExpressionReader &r_;
    };

    TokenStream &in_;
    UnknownNames unknown_;
    int depth_ = 0;
};

/* ---- Preprocessor: comments, directives, conditional sections, includes ---- */

bool isSystemHeader(const std::string &name)
{
    static const char *const headers[] = {"windows.h", "winres.h", "afxres.h", "winresrc.h",
                                          "winuser.h", "commctrl.h", "richedit.h", "dlgs.h",
                                          "winver.h", "ntdef.h", "winnt.h"};
    std::string lower = name;
    for (char &c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    size_t slash = lower.find_last_of("/\\");
    if (slash != std::string::npos)
        lower = lower.substr(slash + 1);
    for (const char *h : headers)
        if (lower == h)
            return true;
    return false;
}

class Preprocessor {
public:
    explicit Preprocessor(const IncludeResolver &resolve) : resolve_(resolve)
    {
        defineBuiltin("RC_INVOKED");
        defineBuiltin("_WIN32");
    }

    void run(const std::string &fileName, const std::string &text, int depth);

    std::vector<Token> tokens;
    MacroTable macros;

private:
    struct Condition {
        bool active;        /* lines of this branch are read */
        bool taken;         /* some branch of this #if was read (or the whole #if is skipped) */
        bool sawElse;
        int line;
    };

    void defineBuiltin(const char *name)
    {
        Token one;
        one.kind = Token::Number;
        one.value = 1;
        one.text = "1";
        one.file = &builtinFile_;
        macros[name] = {one};
    }

    bool active() const { return conditions_.empty() || conditions_.back().active; }
    void directive(const std::string &body, const std::string *file, int line, int depth);
    bool evaluateCondition(const std::vector<Token> &tokens, const std::string *file, int line);

    const IncludeResolver &resolve_;
    std::vector<Condition> conditions_;
    std::deque<std::string> fileNames_;     /* stable storage for Token::file */
    std::string builtinFile_ = "<built-in>";
};

/* Removes comments from one physical line; `inComment` carries a block comment across lines. */
std::string stripComments(const std::string &line, bool &inComment)
{
    std::string out;
    size_t i = 0;
    while (i < line.size()) {
        if (inComment) {
            size_t end = line.find("*/", i);
            if (end == std::string::npos)
                return out;
            inComment = false;
            i = end + 2;
            out += ' ';
            continue;
        }
        char c = line[i];
        if (c == '/' && i + 1 < line.size() && line[i + 1] == '/')
            break;
        if (c == '/' && i + 1 < line.size() && line[i + 1] == '*') {
            inComment = true;
            i += 2;
            continue;
        }
        if (c == '"') {     /* copy a string whole: comment markers inside it are text */
            out += c;
            ++i;
            while (i < line.size()) {
                char d = line[i++];
                out += d;
                if (d == '\\' && i < line.size()) {
                    out += line[i++];
                } else if (d == '"') {
                    if (i < line.size() && line[i] == '"') {
                        out += line[i++];
                        continue;
                    }
                    break;
                }
            }
            continue;
        }
        out += c;
        ++i;
    }
    return out;
}

void Preprocessor::run(const std::string &fileName, const std::string &text, int depth)
{
    fileNames_.push_back(fileName);
    const std::string *file = &fileNames_.back();
    size_t conditionsAtStart = conditions_.size();
    /* Room for the tokens up front: moving them as the list grows touches twice the memory,
    ** and every page touched for the first time costs the start-up of a short command. */
    tokens.reserve(tokens.size() + text.size() / 4);

    std::vector<std::string> lines;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
        start = end + 1;
    }

    bool inComment = false;
    int commentLine = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        int lineNumber = static_cast<int>(i) + 1;
        bool wasInComment = inComment;
        std::string content = stripComments(lines[i], inComment);
        if (!wasInComment && inComment)
            commentLine = lineNumber;
        size_t first = content.find_first_not_of(" \t\f\v");
        if (first != std::string::npos && content[first] == '#' && !wasInComment) {
            std::string body = content.substr(first + 1);
            while (!body.empty() && body.back() == '\\' && i + 1 < lines.size()) {
                body.pop_back();
                body += ' ' + stripComments(lines[++i], inComment);
            }
            directive(body, file, lineNumber, depth);
            continue;
        }
        if (active())
            lexLine(content, file, lineNumber, tokens);
    }
    if (inComment)
        fail(*file, commentLine, "unterminated comment");
    if (conditions_.size() > conditionsAtStart)
        fail(*file, conditions_.back().line, "#if without #endif");
}

void Preprocessor::directive(const std::string &body, const std::string *file, int line, int depth)
{
    size_t p = body.find_first_not_of(" \t");
    if (p == std::string::npos)
        return;     /* a lone '#' is allowed */
    size_t q = p;
    while (q < body.size() && (std::isalnum(static_cast<unsigned char>(body[q])) || body[q] == '_'))
        ++q;
    std::string name = body.substr(p, q - p);
    std::string rest = body.substr(q);

    if (name == "ifdef" || name == "ifndef" || name == "if") {
        if (!active()) {
            conditions_.push_back({false, true, false, line});
            return;
        }
        bool value;
        if (name == "if") {
            std::vector<Token> expr;
            lexLine(rest, file, line, expr);
            value = evaluateCondition(expr, file, line);
        } else {
            std::vector<Token> words;
            lexLine(rest, file, line, words);
            if (words.size() != 1 || words[0].kind != Token::Identifier)
                fail(*file, line, "#" + name + " needs one name");
            value = macros.count(words[0].text) == (name == "ifdef" ? 1u : 0u);
        }
        conditions_.push_back({value, value, false, line});
        return;
    }
    if (name == "elif") {
        if (conditions_.empty() || conditions_.back().sawElse)
            fail(*file, line, "#elif without #if");
        Condition &c = conditions_.back();
        if (c.taken) {
            c.active = false;
            return;
        }
        std::vector<Token> expr;
        lexLine(rest, file, line, expr);
        c.active = evaluateCondition(expr, file, line);
        c.taken = c.active;
        return;
    }
    if (name == "else") {
        if (conditions_.empty() || conditions_.back().sawElse)
            fail(*file, line, "#else without #if");
        Condition &c = conditions_.back();
        c.sawElse = true;
        c.active = !c.taken;
        c.taken = true;
        return;
    }
    if (name == "endif") {
        if (conditions_.empty())
            fail(*file, line, "#endif without #if");
        conditions_.pop_back();
        return;
    }
    if (!active())
        return;

    if (name == "define") {
        size_t a = rest.find_first_not_of(" \t");
        size_t b = a;
        while (b < rest.size() && (std::isalnum(static_cast<unsigned char>(rest[b])) || rest[b] == '_'))
            ++b;
        if (a == std::string::npos || a == b || std::isdigit(static_cast<unsigned char>(rest[a])))
            fail(*file, line, "#define needs a name");
        if (b < rest.size() && rest[b] == '(')
            fail(*file, line, "macros with parameters are not supported");
        std::vector<Token> value;
        lexLine(rest.substr(b), file, line, value);
        macros[rest.substr(a, b - a)] = value;
        return;
    }
    if (name == "undef") {
        std::vector<Token> words;
        lexLine(rest, file, line, words);
        if (words.size() != 1 || words[0].kind != Token::Identifier)
            fail(*file, line, "#undef needs one name");
        macros.erase(words[0].text);
        return;
    }
    if (name == "include") {
        size_t a = rest.find_first_not_of(" \t");
        if (a == std::string::npos || (rest[a] != '"' && rest[a] != '<'))
            fail(*file, line, "#include needs a \"file\" or <file>");
        char close = rest[a] == '"' ? '"' : '>';
        size_t b = rest.find(close, a + 1);
        if (b == std::string::npos)
            fail(*file, line, "#include file name not closed");
        std::string included = rest.substr(a + 1, b - a - 1);
        const std::string *text = resolve_(included);
        if (!text) {
            /* System headers only declare the predefined names, which the reader knows. */
            if (close == '>' || isSystemHeader(included))
                return;
            fail(*file, line, "cannot open include file \"" + included + "\"");
        }
        if (depth + 1 >= MAX_INCLUDE_DEPTH)
            fail(*file, line, "#include nested too deeply");
        run(included, *text, depth + 1);
        return;
    }
    if (name == "pragma" || name == "line")
        return;
    if (name == "error")
        fail(*file, line, "#error" + rest);
    fail(*file, line, "unknown directive #" + name);
}

bool Preprocessor::evaluateCondition(const std::vector<Token> &raw, const std::string *file, int line)
{
    std::vector<Token> expr;
    for (size_t i = 0; i < raw.size(); ++i) {
        if (raw[i].kind == Token::Identifier && raw[i].text == "defined") {
            size_t k = i + 1;
            bool paren = k < raw.size() && isPunct(&raw[k], "(");
            if (paren)
                ++k;
            if (k >= raw.size() || raw[k].kind != Token::Identifier)
                fail(*file, line, "defined needs a name");
            Token v = raw[k];
            v.kind = Token::Number;
            v.value = macros.count(raw[k].text) ? 1 : 0;
            v.text = std::to_string(v.value);
            if (paren) {
                ++k;
                if (k >= raw.size() || !isPunct(&raw[k], ")"))
                    fail(*file, line, "defined( without )");
            }
            expr.push_back(v);
            i = k;
        } else {
            expr.push_back(raw[i]);
        }
    }
    if (expr.empty())
        fail(*file, line, "#if needs an expression");
    TokenStream in(expr, macros);
    ExpressionReader reader(in, UnknownNames::AreZero);
    long long v = reader.full();
    if (in.peek())
        fail(*file, line, "unexpected " + describe(in.peek()) + " in #if");
    return v != 0;
}

/* ---- Parser: resource statements ---- */

struct ControlKeyword {
    const char *keyword;
    const char *className;
    DWORD defaultStyle;
    bool hasText;
};

constexpr DWORD WS_CHILD_VISIBLE = 0x40000000 | 0x10000000;
constexpr DWORD WS_TABSTOP_ = 0x00010000, WS_GROUP_ = 0x00020000, WS_BORDER_ = 0x00800000;
constexpr DWORD BUTTON_TYPE_BITS = 0xF;

const ControlKeyword controlKeywords[] = {
    {"LTEXT", STATIC_CLASS, 0x0 | WS_GROUP_, true},
    {"CTEXT", STATIC_CLASS, 0x1 | WS_GROUP_, true},
    {"RTEXT", STATIC_CLASS, 0x2 | WS_GROUP_, true},
    {"PUSHBUTTON", BUTTON_CLASS, 0x0 | WS_TABSTOP_, true},
    {"DEFPUSHBUTTON", BUTTON_CLASS, 0x1 | WS_TABSTOP_, true},
    {"CHECKBOX", BUTTON_CLASS, 0x2 | WS_TABSTOP_, true},
    {"AUTOCHECKBOX", BUTTON_CLASS, 0x3 | WS_TABSTOP_, true},
    {"RADIOBUTTON", BUTTON_CLASS, 0x4 | WS_TABSTOP_, true},
    {"STATE3", BUTTON_CLASS, 0x5 | WS_TABSTOP_, true},
    {"AUTO3STATE", BUTTON_CLASS, 0x6 | WS_TABSTOP_, true},
    {"GROUPBOX", BUTTON_CLASS, 0x7, true},
    {"AUTORADIOBUTTON", BUTTON_CLASS, 0x9 | WS_TABSTOP_, true},
    {"PUSHBOX", BUTTON_CLASS, 0xA | WS_TABSTOP_, true},
    {"EDITTEXT", EDIT_CLASS, 0x0 | WS_BORDER_ | WS_TABSTOP_, false},
    {"LISTBOX", LISTBOX_CLASS, 0x1 | WS_BORDER_, false},
};

const char *const blockResourceTypes[] = {"MENU", "MENUEX", "ACCELERATORS", "VERSIONINFO", "DLGINIT",
                                          "TOOLBAR", "DESIGNINFO", "TEXTINCLUDE", "RCDATA",
                                          "STRINGTABLE", "MESSAGETABLE"};
const char *const fileResourceTypes[] = {"ICON", "BITMAP", "CURSOR", "FONT", "HTML", "PNG"};
const char *const memoryOptions[] = {"DISCARDABLE", "MOVEABLE", "PURE", "PRELOAD", "LOADONCALL",
                                     "FIXED", "IMPURE", "SHARED", "NONSHARED"};

class ScriptParser {
public:
    ScriptParser(const std::vector<Token> &tokens, const MacroTable &macros) : in_(tokens, macros) {}

    std::vector<DialogTemplate> parse()
    {
        while (in_.peek())
            resource();
        return dialogs_;
    }

private:
    long long number() { return ExpressionReader(in_, UnknownNames::AreErrors).full(); }
    int coordinate() { return static_cast<int>(number()); }

    /* rc style lists: terms joined by '|', a term after NOT is removed from the style. */
    DWORD styleList(DWORD start)
    {
        DWORD style = start;
        do {
            bool remove = isKeyword(in_.peek(), "NOT");
            if (remove)
                in_.next("NOT");
            DWORD value = static_cast<DWORD>(ExpressionReader(in_, UnknownNames::AreErrors).term());
            style = remove ? (style & ~value) : (style | value);
        } while (in_.accept("|"));
        return style;
    }

    bool isBlockStart(const Token *t) { return isKeyword(t, "BEGIN") || isPunct(t, "{"); }
    bool isBlockEnd(const Token *t) { return isKeyword(t, "END") || isPunct(t, "}"); }

    void skipMemoryOptions()
    {
        for (bool again = true; again;) {
            again = false;
            for (const char *option : memoryOptions)
                if (isKeyword(in_.peek(), option)) {
                    in_.next(option);
                    again = true;
                }
        }
    }

    void skipBlock(const Token &owner)
    {
        while (in_.peek() && !isBlockStart(in_.peek()))
            in_.next("BEGIN");
        if (!in_.peek())
            fail(owner, "missing BEGIN for " + owner.text);
        int depth = 0;
        do {
            Token t = in_.next("END");
            if (isBlockStart(&t))
                ++depth;
            else if (isBlockEnd(&t))
                --depth;
            if (depth > 0 && !in_.peek())
                fail(owner, "missing END for " + owner.text);
        } while (depth > 0);
    }

    std::string textOf(const Token &t)
    {
        if (t.kind == Token::String)
            return t.text;
        if (t.kind == Token::Number)
            return std::to_string(t.value);
        if (t.kind == Token::Identifier)
            return t.text;
        fail(t, "expected a text, found " + describe(&t));
    }

    void resource()
    {
        Token first = in_.next("a resource");
        if (isKeyword(&first, "LANGUAGE")) {
            number();
            in_.expect(",");
            number();
            return;
        }
        if (isKeyword(&first, "STRINGTABLE")) {
            skipBlock(first);
            return;
        }
        if (first.kind == Token::Punct)
            fail(first, "expected a resource name, found " + describe(&first));
        std::string name = first.kind == Token::Number ? "#" + std::to_string(first.value) : first.text;
        Token type = in_.next("a resource type");
        std::string typeName = upper(type.text);
        if (type.kind == Token::Identifier && (typeName == "DIALOG" || typeName == "DIALOGEX")) {
            dialog(name, typeName == "DIALOGEX", first);
            return;
        }
        if (type.kind == Token::Identifier) {
            for (const char *block : blockResourceTypes)
                if (typeName == block) {
                    skipBlock(type);
                    return;
                }
            for (const char *fileType : fileResourceTypes)
                if (typeName == fileType) {
                    skipMemoryOptions();
                    Token fileName = in_.next("a file name");
                    if (fileName.kind != Token::String)
                        fail(fileName, typeName + " needs a quoted file name");
                    return;
                }
        }
        fail(type, "unknown resource type " + describe(&type) + " for " + name);
    }

    void dialog(const std::string &name, bool extended, const Token &at)
    {
        DialogTemplate d;
        d.name = name;
        d.extended = extended;
        d.style = 0x80000000 | WS_BORDER_ | 0x00080000;    /* WS_POPUP | WS_BORDER | WS_SYSMENU */
        skipMemoryOptions();
        position(d);
        if (extended && in_.accept(","))
            number();   /* help id */
        for (;;) {
            const Token *t = in_.peek();
            if (!t)
                fail(at, "dialog " + name + " has no BEGIN");
            if (isBlockStart(t))
                break;
            Token option = in_.next("a dialog option");
            std::string word = upper(option.text);
            if (option.kind != Token::Identifier)
                fail(option, "expected BEGIN or a dialog option, found " + describe(&option));
            if (word == "STYLE") {
                d.style = styleList(0);
            } else if (word == "EXSTYLE") {
                d.exStyle = styleList(0);
            } else if (word == "CAPTION") {
                Token caption = in_.next("a caption");
                if (caption.kind != Token::String)
                    fail(caption, "CAPTION needs a quoted text");
                d.caption = caption.text;
            } else if (word == "FONT") {
                d.fontSize = coordinate();
                in_.expect(",");
                Token face = in_.next("a font name");
                if (face.kind != Token::String)
                    fail(face, "FONT needs a quoted face name");
                d.fontFace = face.text;
                if (extended) {     /* weight, italic, character set */
                    for (int extra = 0; extra < 3 && in_.accept(","); ++extra)
                        number();
                }
            } else if (word == "MENU" || word == "CLASS") {
                in_.next("a name");
            } else if (word == "LANGUAGE") {
                number();
                in_.expect(",");
                number();
            } else if (word == "CHARACTERISTICS" || word == "VERSION") {
                number();
            } else {
                fail(option, "expected BEGIN or a dialog option, found " + describe(&option));
            }
        }
        in_.next("BEGIN");
        for (;;) {
            const Token *t = in_.peek();
            if (!t)
                fail(in_.lastFile(), in_.lastLine(), "dialog " + name + " has no END");
            if (isBlockEnd(t)) {
                in_.next("END");
                break;
            }
            d.controls.push_back(control(extended));
        }
        dialogs_.push_back(std::move(d));
    }

    /* A style list of a predefined control, applied to the statement's default style: named
    ** bits are added, bits after NOT removed. A button type given in the list replaces the
    ** statement's own (RADIOBUTTON ..., BS_AUTORADIOBUTTON makes an automatic one). */
    DWORD styleOverDefault(const std::string &className, DWORD defaults)
    {
        DWORD added = 0, removed = 0;
        do {
            bool remove = isKeyword(in_.peek(), "NOT");
            if (remove)
                in_.next("NOT");
            DWORD value = static_cast<DWORD>(ExpressionReader(in_, UnknownNames::AreErrors).term());
            if (remove) {
                removed |= value;
                added &= ~value;
            } else {
                added |= value;
                removed &= ~value;
            }
        } while (in_.accept("|"));
        if (className == BUTTON_CLASS && (added & BUTTON_TYPE_BITS) != 0)
            defaults &= ~BUTTON_TYPE_BITS;
        return (defaults | added) & ~removed;
    }

    /* The optional ", extended style [, help id]" that ends a control statement. */
    void extendedStyleAndHelpId(ControlTemplate &c, bool extended)
    {
        if (!in_.accept(","))
            return;
        c.exStyle = styleList(0);
        if (!in_.accept(","))
            return;
        if (!extended)
            fail(in_.lastFile(), in_.lastLine(), "too many values for a control of a DIALOG (help ids need DIALOGEX)");
        number();
    }

    ControlTemplate control(bool extended)
    {
        Token keyword = in_.next("a control");
        std::string word = upper(keyword.text);
        ControlTemplate c;
        if (keyword.kind == Token::Identifier && word == "CONTROL") {
            c.text = textOf(in_.next("the control text"));
            in_.expect(",");
            c.id = static_cast<int>(number());
            in_.expect(",");
            c.className = canonicalClass(in_.next("a window class"));
            in_.expect(",");
            c.style = styleList(WS_CHILD_VISIBLE);
            in_.expect(",");
            position(c);
            extendedStyleAndHelpId(c, extended);
            return c;
        }
        if (keyword.kind == Token::Identifier)
            for (const ControlKeyword &k : controlKeywords)
                if (word == k.keyword) {
                    c.className = k.className;
                    if (k.hasText) {
                        c.text = textOf(in_.next("the control text"));
                        in_.expect(",");
                    }
                    c.id = static_cast<int>(number());
                    in_.expect(",");
                    position(c);
                    c.style = WS_CHILD_VISIBLE | k.defaultStyle;
                    if (in_.accept(",")) {
                        c.style = styleOverDefault(c.className, c.style);
                        extendedStyleAndHelpId(c, extended);
                    }
                    return c;
                }
        if (keyword.kind == Token::Identifier &&
            (word == "COMBOBOX" || word == "SCROLLBAR" || word == "ICON"))
            fail(keyword, "control " + word + " is not supported");
        fail(keyword, "expected a control or END, found " + describe(&keyword));
    }

    /* x, y, cx, cy of a dialog or a control. */
    template <typename Placed> void position(Placed &c)
    {
        c.x = coordinate();
        in_.expect(",");
        c.y = coordinate();
        in_.expect(",");
        c.cx = coordinate();
        in_.expect(",");
        c.cy = coordinate();
    }

    std::string canonicalClass(const Token &cls)
    {
        if (cls.kind == Token::Number) {    /* the ordinal classes of compiled templates */
            switch (cls.value) {
            case 0x80: return BUTTON_CLASS;
            case 0x81: return EDIT_CLASS;
            case 0x82: return STATIC_CLASS;
            case 0x83: return LISTBOX_CLASS;
            }
        } else if (cls.kind == Token::String || cls.kind == Token::Identifier) {
            std::string u = upper(cls.text);
            for (const char *known : {BUTTON_CLASS, EDIT_CLASS, STATIC_CLASS, LISTBOX_CLASS})
                if (u == upper(known))
                    return known;
        }
        fail(cls, "window class " + describe(&cls) + " is not supported (Button, Edit, Static, ListBox)");
    }

    TokenStream in_;
    std::vector<DialogTemplate> dialogs_;
};

}

ResourceScript parseResourceScript(const std::string &fileName, const std::string &text,
                                   const IncludeResolver &resolveInclude)
{
    ResourceScript result;
    try {
        Preprocessor pre(resolveInclude);
        pre.run(fileName, text, 0);
        ScriptParser parser(pre.tokens, pre.macros);
        result.dialogs = parser.parse();
    } catch (const ScriptError &e) {
        result.dialogs.clear();
        result.error = e.message;
    }
    return result;
}

}
