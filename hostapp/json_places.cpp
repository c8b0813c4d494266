/*
** hostapp/json_places.cpp: a plain scan of a JSON text that parsed, following the JSON
** pointer of the value at each byte.
*/
#include "hostapp/json_places.h"

#include <cstring>
#include <set>
#include <vector>

namespace hostapp {

bool walkJsonPlaces(const std::string &text, size_t maxDepth, const std::function<bool(const JsonPlace &)> &visit,
                    std::string &problem, int &problemLine)
{
    struct Frame {
        bool object, expectKey;
        size_t index;
        std::string key, pointer;
        std::set<std::string> keys;
        int line;
        size_t begin;
    };
    std::vector<Frame> stack;
    int line = 1;
    auto valuePointer = [&stack]() {
        if (stack.empty())
            return std::string();
        const Frame &frame = stack.back();
        return frame.pointer + "/" + (frame.object ? frame.key : std::to_string(frame.index));
    };
    auto stop = [&](const std::string &why) {
        problem = why;
        problemLine = line;
        return false;
    };
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '\n') {
            ++line;
        } else if (c == ' ' || c == '\t' || c == '\r' || c == ':') {
        } else if (c == ',') {
            if (!stack.empty() && stack.back().object)
                stack.back().expectKey = true;
            else if (!stack.empty())
                stack.back().index++;
        } else if (c == '}' || c == ']') {
            if (stack.empty())
                continue;
            Frame frame = std::move(stack.back());
            stack.pop_back();
            if (!visit({frame.pointer, frame.line, frame.begin, i + 1}))
                return true;
        } else if (c == '"') {
            size_t begin = i;
            std::string chars;
            for (++i; i < text.size() && text[i] != '"'; ++i) {
                if (text[i] == '\\' && i + 1 < text.size())
                    ++i;
                chars += text[i];
            }
            if (!stack.empty() && stack.back().object && stack.back().expectKey) {
                if (!stack.back().keys.insert(chars).second)
                    return stop("'" + chars + "' is given twice in one object; keep one of them");
                stack.back().key = chars;
                stack.back().expectKey = false;
            } else if (!visit({valuePointer(), line, begin, i + 1})) {
                return true;
            }
        } else if (c == '{' || c == '[') {
            if (stack.size() >= maxDepth)
                return stop("lists and objects nest more than " + std::to_string(maxDepth) +
                            " deep; nest them less deeply");
            stack.push_back({c == '{', c == '{', 0, "", valuePointer(), {}, line, i});
        } else {
            size_t begin = i;
            while (i + 1 < text.size() && !std::strchr(",}] \t\r\n", text[i + 1]))
                ++i;
            if (!visit({valuePointer(), line, begin, i + 1}))
                return true;
        }
    }
    return true;
}

}
