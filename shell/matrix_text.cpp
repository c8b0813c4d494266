/*
** shell/matrix_text.cpp: a matrix as one bracketed block in MATLAB syntax, shown in
** a message box (screen) or written line by line to the current output file.
*/
#include <cstdint>
#include <cstring>

#include "host/host.h"
#include "numeric/matrix.h"
#include "shell/text.h"

/* The matrix text buffer: the text built so far, NUL-terminated. */
static char matrixText[4096];

/* Where the text goes and how much of the buffer holds it. */
struct MatrixTextOutput {
    bool fileMode;
    size_t length;          /* bytes of text in matrixText */
    size_t lineStart;       /* offset at which the current line began */
};

/* Sends the whole text (a message box, or the output file) and empties the buffer. */
static void sendText(MatrixTextOutput *out)
{
    if (out->length > 0) {
        if (out->fileMode)
            farFilePrint(matrixText);
        else
            winMsg(matrixText);
    }
    out->length = out->lineStart = 0;
    matrixText[0] = '\0';
}

/* A text that outgrows the buffer is never cut: in file mode what is there is written
** at once (the file gets the same bytes); on the screen the complete lines so far go
** into one message box and the current line moves to the next box, and only a single
** line longer than the buffer is split between boxes, at an element boundary. */
static void makeRoom(MatrixTextOutput *out, size_t needed)
{
    if (!out->fileMode && out->lineStart > 0) {
        char kept = matrixText[out->lineStart];
        matrixText[out->lineStart] = '\0';
        winMsg(matrixText);
        matrixText[out->lineStart] = kept;
        out->length -= out->lineStart;
        std::memmove(matrixText, matrixText + out->lineStart, out->length + 1);
        out->lineStart = 0;
    }
    if (out->length + needed >= sizeof matrixText)
        sendText(out);
}

static void append(MatrixTextOutput *out, const char *text, size_t n)
{
    if (out->length + n >= sizeof matrixText)
        makeRoom(out, n);
    while (n > 0) {
        size_t room = sizeof matrixText - 1 - out->length;
        if (room == 0) {
            sendText(out);
            continue;
        }
        size_t take = n < room ? n : room;
        std::memcpy(matrixText + out->length, text, take);
        out->length += take;
        text += take;
        n -= take;
        matrixText[out->length] = '\0';
    }
}

static void appendString(MatrixTextOutput *out, const char *text)
{
    append(out, text, std::strlen(text));
}

/* On the screen the text is the message's format, so a "%" of the name is doubled
** to be shown as itself. */
static void appendName(MatrixTextOutput *out, const char *name)
{
    for (const char *p = name; *p; p++)
        if (*p == '%' && !out->fileMode)
            append(out, "%%", 2);
        else
            append(out, p, 1);
}

void printMatrix(const char *name, const Matrix *m)
{
    MatrixTextOutput out{linOutputChoice != LIN_OUTPUT_SCREEN, 0, 0};
    matrixText[0] = '\0';
    if (!name)
        name = "";
    const size_t nameLength = std::strlen(name);
    appendName(&out, name);

    uint64_t lines, perLine;
    if (!m) {
        lines = 1;
        perLine = 0;
    } else if (m->cols == 0) {
        lines = 1;
        perLine = m->rows;
    } else {
        lines = m->rows;
        perLine = m->cols;
    }

    appendString(&out, "[");
    if (!(m && m->cols != 0 && m->rows == 0)) {
        for (uint64_t i = 0; i < lines; i++) {
            if (i > 0)
                append(&out, "        ", nameLength < 8 ? nameLength : 8);
            for (uint64_t k = 0; k < perLine; k++) {
                double value = m->cols == 0 ? m->data[k] : m->data[k * m->rows + i];
                char element[72];       /* numberToText gives at most 63 bytes */
                const char *text = numberToText(value);
                size_t n = std::strlen(text);
                std::memcpy(element, text, n);
                element[n] = ' ';
                append(&out, element, n + 1);
            }
            if (i + 1 < lines) {
                appendString(&out, ";\n");
                out.lineStart = out.length;
            }
            if (out.fileMode)
                sendText(&out);
        }
    }
    appendString(&out, "];\n");
    sendText(&out);
}
