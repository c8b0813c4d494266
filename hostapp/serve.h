/*
** hostapp/serve.h: `praxa [options] [DIAGRAM] serve [--port N]`, the session as a web page.
*/
#ifndef TERVAN_SERVE_H
#define TERVAN_SERVE_H

#include <string>

namespace hostapp {

/* Serves the loaded diagram and plug-in on http://127.0.0.1:port/ (0: a free port) until
** Ctrl-C (SIGINT) or SIGTERM; the plug-in runs on a thread of its own. Returns the exit
** status: 0 when stopped, 2 when the port cannot be had. */
int serveSession(const std::string &diagramPath, int port);

}

#endif
