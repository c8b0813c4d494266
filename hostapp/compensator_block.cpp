/*
** hostapp/compensator_block.cpp: the compensator block: its realization from gain, zeros
** and poles, the design the plug-in hands over, and writing that design back into the
** diagram file in place of the block's old one.
*/
#include "hostapp/compensator_block.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <optional>
#include <sstream>
#include <vector>

#include <nlohmann/json.hpp>

#include "hostapp/engine.h"
#include "hostapp/json_places.h"
#include "hostapp/text_file.h"
#include "platform/driver.h"

namespace hostapp {

namespace {

using Roots = std::vector<std::array<double, 2>>;

struct Design {
    double gain;
    Roots zeros, poles;
};

std::optional<Design> &keptDesign()
{
    static std::optional<Design> design;
    return design;
}

/* Descending real coefficients of the product of (s - root). */
std::vector<double> polynomialOf(const Roots &roots, double scale)
{
    std::vector<std::complex<double>> poly = {1.0};
    for (const auto &root : roots) {
        std::complex<double> r(root[0], root[1]);
        poly.push_back(0.0);
        for (size_t i = poly.size() - 1; i > 0; --i)
            poly[i] -= r * poly[i - 1];
    }
    std::vector<double> coefficients;
    for (const auto &c : poly)
        coefficients.push_back(scale * c.real());   /* conjugate pairs leave only rounding in the imaginary parts */
    return coefficients;
}

std::string rootText(const std::array<double, 2> &root)
{
    std::ostringstream text;
    text << "(" << root[0] << "," << root[1] << ")";
    return text.str();
}

/* A complex root needs its conjugate as often as it appears itself, or the block's
** coefficients would be complex. */
bool conjugatesPaired(const Roots &roots, const char *what, std::string &error)
{
    for (const auto &root : roots) {
        if (!std::isfinite(root[0]) || !std::isfinite(root[1])) {
            error = std::string("a ") + what + " is not finite; give finite numbers";
            return false;
        }
        if (root[1] == 0.0)
            continue;
        auto count = [&roots](double re, double im) {
            return std::count_if(roots.begin(), roots.end(), [&](const auto &r) { return r[0] == re && r[1] == im; });
        };
        if (count(root[0], root[1]) != count(root[0], -root[1])) {
            error = std::string("the ") + what + " " + rootText(root) + " has no conjugate " +
                    rootText({root[0], -root[1]}) + "; add it so that the compensator stays real";
            return false;
        }
    }
    return true;
}

Block *findCompensatorBlock()
{
    Block *found = nullptr;
    if (Diagram *diagram = currentDiagram())
        forEachBlock(diagram->blocks, [&found](Block &block) {
            if (!found && block.type == BlockType::Compensator)
                found = &block;
        });
    return found;
}

/* The byte range of the value at a JSON pointer ("/blocks/2") in a text that parses. */
bool valueSpan(const std::string &text, const std::string &target, size_t &begin, size_t &end)
{
    bool found = false;
    auto match = [&](const JsonPlace &place) {
        if (place.pointer != target)
            return true;
        begin = place.begin;
        end = place.end;
        found = true;
        return false;
    };
    std::string problem;
    int problemLine = 0;
    walkJsonPlaces(text, SIZE_MAX, match, problem, problemLine);
    return found;
}

nlohmann::ordered_json rootsJson(const Roots &roots)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const auto &root : roots) {
        if (root[1] == 0.0)
            list.push_back(root[0]);
        else
            list.push_back({root[0], root[1]});
    }
    return list;
}

/* Writes the file through a temporary file beside it, renamed over it at the end, so a
** failure leaves the old file whole. */
bool replaceFile(const std::string &path, const std::string &text, std::string &error)
{
    struct stat info;
    mode_t mode = stat(path.c_str(), &info) == 0 ? (info.st_mode & 07777) : 0644;
    std::string temporary = path + ".XXXXXX";
    int fd = mkstemp(temporary.data());
    if (fd < 0) {
        error = std::strerror(errno);
        return false;
    }
    size_t written = 0;
    while (written < text.size()) {
        ssize_t n = write(fd, text.data() + written, text.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        written += (size_t)n;
    }
    bool ok = written == text.size() && fchmod(fd, mode) == 0 && fsync(fd) == 0;
    int writeErrno = errno;
    ok = close(fd) == 0 && ok;
    if (ok && rename(temporary.c_str(), path.c_str()) == 0)
        return true;
    error = std::strerror(ok ? errno : writeErrno);
    unlink(temporary.c_str());
    return false;
}

bool saveBlock(const Block &block, const std::string &path, std::string &error)
{
    const char *instead = "; make the file and its folder writable, or leave out --save";
    std::string text;
    if (!readTextFile(path, "diagram", DIAGRAM_FILE_LIMIT, text, error)) {
        error += instead;
        return false;
    }
    size_t begin = 0, end = 0;
    nlohmann::ordered_json fields;
    if (valueSpan(text, block.pointer, begin, end))
        fields = nlohmann::ordered_json::parse(text.substr(begin, end - begin), nullptr, false);
    if (!fields.is_object() || !fields.contains("id") || fields["id"] != block.id) {
        error = "the file no longer holds the block where it was loaded from; load it again";
        return false;
    }
    fields["gain"] = block.compensatorGain;
    fields["zeros"] = rootsJson(block.zeros);
    fields["poles"] = rootsJson(block.poles);
    text.replace(begin, end - begin, fields.dump());
    if (!replaceFile(path, text, error)) {
        error += instead;
        return false;
    }
    return true;
}

}

bool realizeCompensator(Block &block, std::string &error)
{
    if (!std::isfinite(block.compensatorGain)) {
        error = "the gain is not finite; give a finite number";
        return false;
    }
    if (!conjugatesPaired(block.zeros, "zero", error) || !conjugatesPaired(block.poles, "pole", error))
        return false;
    if (block.zeros.size() > block.poles.size()) {
        error = std::to_string(block.zeros.size()) + " zeros but " + std::to_string(block.poles.size()) +
                " poles make an improper compensator; add a pole for each zero beyond the poles";
        return false;
    }
    LinearSystem realized;
    if (!realizeTransferFunction(polynomialOf(block.zeros, block.compensatorGain), polynomialOf(block.poles, 1.0),
                                 realized, error))
        return false;
    block.linear = realized;
    return true;
}

std::string compensatorBlockPath()
{
    Block *block = findCompensatorBlock();
    return block ? block->path : std::string();
}

void keepCompensatorDesign(const Compensator &design)
{
    Design kept{design.gain, {}, {}};
    for (int i = 0; design.zeros && i < design.zeroCount; ++i)
        kept.zeros.push_back({design.zeros[i].re, design.zeros[i].im});
    for (int i = 0; design.poles && i < design.poleCount; ++i)
        kept.poles.push_back({design.poles[i].re, design.poles[i].im});
    keptDesign() = kept;
}

bool takeCompensatorDesign(const std::string &saveTo)
{
    Block *block = findCompensatorBlock();
    std::optional<Design> design = keptDesign();
    keptDesign().reset();
    if (!block) {
        platform::transcriptNote("[host] the diagram has no compensator block, so the design is not kept: "
                                 "add a block of type \"compensator\" to the diagram to receive it");
        return true;
    }
    if (!design)
        return true;    /* announced without a record: nothing to take */
    Block previous;
    previous.compensatorGain = block->compensatorGain;
    previous.zeros = block->zeros;
    previous.poles = block->poles;
    previous.linear = block->linear;
    previous.state = block->state;
    previous.next = block->next;
    block->compensatorGain = design->gain;
    block->zeros = design->zeros;
    block->poles = design->poles;
    std::string error;
    Diagram &diagram = *currentDiagram();
    bool realized = realizeCompensator(*block, error);
    if (realized) {
        block->state.assign((size_t)block->linear.n, 0.0);
        block->next.assign((size_t)block->linear.n, 0.0);
        block->orderKeys[0] = block->linear.n;
        try {
            orderForEvaluation(diagram);
        } catch (const DiagramError &e) {
            error = e.message;
            realized = false;
        }
    }
    if (!realized) {
        block->compensatorGain = previous.compensatorGain;
        block->zeros = previous.zeros;
        block->poles = previous.poles;
        block->linear = previous.linear;
        block->state = previous.state;
        block->next = previous.next;
        block->orderKeys[0] = block->linear.n;
        orderForEvaluation(diagram);
        platform::transcriptNote("[host] compensator block '" + block->path + "' not updated: " + error);
        return true;
    }
    executeBlocks(diagram.evaluationOrder, diagram.time);
    platform::transcriptNote("[host] compensator block '" + block->path + "' updated");
    if (saveTo.empty())
        return true;
    if (!saveBlock(*block, saveTo, error)) {
        platform::transcriptNote("[error] cannot save the compensator block into " + saveTo + ": " + error);
        return false;
    }
    platform::transcriptNote("[host] compensator block '" + block->path + "' saved in " + saveTo);
    return true;
}

}
