/*
** hostapp/json_places.h: where each value of a JSON text stands (its JSON pointer, line
** and bytes), for messages that name a line and for edits in place; nlohmann-json gives
** no positions.
*/
#ifndef TERVAN_JSON_PLACES_H
#define TERVAN_JSON_PLACES_H

#include <cstddef>
#include <functional>
#include <string>

namespace hostapp {

struct JsonPlace {
    std::string pointer;        /* "/blocks/2/den"; "" for the whole text */
    int line;                   /* the line the value starts on, from 1 */
    size_t begin, end;          /* its bytes: [begin, end) */
};

/* Walks a text that parsed, calling visit for each value when it ends (members before their
** object or list) until visit returns false; keys are taken unescaped. Stops with false, the
** reason and its line in problem/problemLine, at a key given twice in one object (a parser
** keeps the last silently) or at lists and objects nested more than maxDepth deep. */
bool walkJsonPlaces(const std::string &text, size_t maxDepth, const std::function<bool(const JsonPlace &)> &visit,
                    std::string &problem, int &problemLine);

}

#endif
