/*
** hostapp/web_server.cpp: the HTTP server of `praxa serve` (cpp-httplib). Refuses requests
** that do not come from this machine or name another host; hands the session to one page
** at a time; serves the page's files, the diagram picture, the plot files of the output
** folder, and the API that passes inputs to the session thread and states back.
*/
#include "hostapp/web_server.h"

#include <httplib.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
#include <random>

#include <nlohmann/json.hpp>

#include "hostapp/web_assets.h"
#include "platform/web_driver.h"

namespace hostapp {

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t MAX_REQUEST_BODY = 64 * 1024;
constexpr auto HOLDER_TIMEOUT = std::chrono::seconds(15);  /* a page polls every few seconds */
constexpr auto INPUT_WAIT = std::chrono::seconds(30);
constexpr auto STATE_WAIT = std::chrono::seconds(5);
/* A page keeps several connections open (state polls, plot images): more workers than
** the library's default for two cores. */
constexpr size_t SERVER_THREADS = 16;

const char *const IN_USE_PAGE =
    "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>Praxa: in use</title></head>"
    "<body style=\"font-family: sans-serif; margin: 3em\"><h1>Praxa is in use</h1>"
    "<p id=\"in-use\">Another page holds this Praxa session. One page at a time can work on it, "
    "as there is one set of dialogs per Praxa process.</p>"
    "<p>Go on in that page, or close it and reload this one 15 seconds later; "
    "to work on a second session, start another <code>praxa serve</code>.</p></body></html>";

struct ServerState {
    std::unique_ptr<httplib::Server> server;
    WebServerSetup setup;
    int port = 0;
    std::mutex holderLock;
    std::string holderToken;
    Clock::time_point holderSeen;
};

ServerState &state()
{
    static ServerState s;
    return s;
}

std::string newToken()
{
    std::random_device random;
    const char *hex = "0123456789abcdef";
    std::string token;
    for (int i = 0; i < 32; ++i)
        token += hex[random() % 16];
    return token;
}

void plainText(httplib::Response &res, int status, const std::string &text)
{
    res.status = status;
    res.set_content(text + "\n", "text/plain; charset=utf-8");
}

/* The session belongs to the page that presents the holder's token; a page that has not
** been heard from for a while has gone, and the next page may take the session over. */
bool holds(const std::string &token)
{
    ServerState &s = state();
    std::lock_guard<std::mutex> hold(s.holderLock);
    if (token.empty() || token != s.holderToken)
        return false;
    s.holderSeen = Clock::now();
    return true;
}

std::string claimSession()
{
    ServerState &s = state();
    std::lock_guard<std::mutex> hold(s.holderLock);
    if (!s.holderToken.empty() && Clock::now() - s.holderSeen < HOLDER_TIMEOUT)
        return "";
    s.holderToken = newToken();
    s.holderSeen = Clock::now();
    return s.holderToken;
}

/* Only this machine, and only under our own address: a page elsewhere that resolves its
** own name to 127.0.0.1 must not reach the session through the browser. */
httplib::Server::HandlerResponse refuseStrangers(const httplib::Request &req, httplib::Response &res)
{
    if (req.remote_addr != "127.0.0.1") {
        plainText(res, 403, "Praxa serves this machine only; requests from other hosts are refused. Open the page on "
                            "this machine, at http://127.0.0.1:" + std::to_string(state().port) + "/.");
        return httplib::Server::HandlerResponse::Handled;
    }
    std::string port = ":" + std::to_string(state().port);
    std::string host = req.get_header_value("Host");
    if (req.has_header("Host") && host != "127.0.0.1" + port && host != "localhost" + port) {
        plainText(res, 403, "Praxa answers requests for 127.0.0.1" + port + " only, not for '" + host + "'. Open http://127.0.0.1" +
                                port + "/ instead.");
        return httplib::Server::HandlerResponse::Handled;
    }
    return httplib::Server::HandlerResponse::Unhandled;
}

bool apiAllowed(const httplib::Request &req, httplib::Response &res)
{
    if (holds(req.get_header_value("X-Praxa-Session")))
        return true;
    res.status = 409;
    res.set_content(nlohmann::json{{"inUse", true}, {"error", "Another page holds this Praxa session."}}.dump(),
                    "application/json");
    return false;
}

void sendState(httplib::Response &res, const platform::PublishedState &published)
{
    res.set_header("Cache-Control", "no-store");
    res.set_content(published.json, "application/json");
}

void servePage(const httplib::Request &req, httplib::Response &res)
{
    std::string token = req.get_param_value("session");
    if (!holds(token)) {
        token = claimSession();
        if (token.empty()) {
            res.status = 409;
            res.set_content(IN_USE_PAGE, "text/html; charset=utf-8");
            return;
        }
        res.set_redirect("/?session=" + token, 303);
        return;
    }
    for (const WebAsset &asset : webAssets())
        if (std::string(asset.path) == "/index.html") {
            res.set_header("Cache-Control", "no-store");
            res.set_content(asset.data, asset.size, asset.contentType);
            return;
        }
    plainText(res, 500, "the page is missing from this build; build praxa again with its web assets");
}

/* A plot file of the output folder: a plain name (no folder, not hidden) ending .svg or .csv. */
void serveOutputFile(const httplib::Request &req, httplib::Response &res)
{
    std::string name = req.matches[1];
    bool svg = name.size() > 4 && name.compare(name.size() - 4, 4, ".svg") == 0;
    bool csv = name.size() > 4 && name.compare(name.size() - 4, 4, ".csv") == 0;
    if (name.find('/') != std::string::npos || name[0] == '.' || (!svg && !csv)) {
        plainText(res, 404, "No such plot file: " + name);
        return;
    }
    std::ifstream in(state().setup.outputDir + "/" + name, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.is_open()) {
        plainText(res, 404, "No such plot file: " + name);
        return;
    }
    res.set_header("Cache-Control", "no-store");
    if (csv)
        res.set_header("Content-Disposition", "attachment; filename=\"" + name + "\"");
    res.set_content(text, svg ? "image/svg+xml" : "text/csv; charset=utf-8");
}

void routes(httplib::Server &server)
{
    server.set_pre_routing_handler(refuseStrangers);
    server.Get("/", servePage);
    for (const WebAsset &asset : webAssets())
        server.Get(asset.path, [&asset](const httplib::Request &, httplib::Response &res) {
            res.set_content(asset.data, asset.size, asset.contentType);
        });
    server.Get("/diagram.svg", [](const httplib::Request &, httplib::Response &res) {
        if (state().setup.diagramPicture.empty())
            plainText(res, 404, "There is no picture of this diagram.");
        else
            res.set_content(state().setup.diagramPicture, "image/svg+xml");
    });
    server.Get(R"(/files/(.+))", serveOutputFile);
    server.Get("/api/state", [](const httplib::Request &req, httplib::Response &res) {
        if (!apiAllowed(req, res))
            return;
        long after = std::strtol(req.get_param_value("after").c_str(), nullptr, 10);
        sendState(res, platform::publishedState(after, STATE_WAIT));
    });
    server.Post("/api/input", [](const httplib::Request &req, httplib::Response &res) {
        if (!apiAllowed(req, res))
            return;
        nlohmann::json input = nlohmann::json::parse(req.body, nullptr, false);
        if (!input.is_object() || !input.contains("kind")) {
            plainText(res, 400, "An input is a JSON object with a \"kind\".");
            return;
        }
        sendState(res, platform::submitPageInput(input, INPUT_WAIT));
    });
    server.set_error_handler([](const httplib::Request &req, httplib::Response &res) {
        if (res.body.empty())
            plainText(res, res.status, res.status == 404 ? "Nothing here: " + req.path
                                                         : "Bad request (HTTP " + std::to_string(res.status) + ").");
    });
    server.set_exception_handler([](const httplib::Request &, httplib::Response &res, std::exception_ptr) {
        plainText(res, 500, "The request could not be handled.");
    });
}

}

bool openWebServer(const WebServerSetup &setup, int port, int &boundPort, std::string &error)
{
    ServerState &s = state();
    s.setup = setup;
    s.server = std::make_unique<httplib::Server>();
    s.server->new_task_queue = [] { return new httplib::ThreadPool(SERVER_THREADS); };
    s.server->set_payload_max_length(MAX_REQUEST_BODY);
    s.server->set_read_timeout(5, 0);
    s.server->set_keep_alive_timeout(2);
    routes(*s.server);
    if (port == 0)
        boundPort = s.server->bind_to_any_port("127.0.0.1");
    else
        boundPort = s.server->bind_to_port("127.0.0.1", port) ? port : -1;
    if (boundPort <= 0) {
        error = "cannot listen on 127.0.0.1:" + std::to_string(port) +
                " (in use?); choose another with --port N, or --port 0 for a free one";
        return false;
    }
    s.port = boundPort;
    return true;
}

void runWebServer() { state().server->listen_after_bind(); }

void stopWebServer()
{
    if (state().server)
        state().server->stop();
}

}
