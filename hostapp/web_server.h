/*
** hostapp/web_server.h: the HTTP side of `praxa serve`, on 127.0.0.1 only: the page, its
** API (inputs in, published states out, through the web dialog driver), the diagram picture
** and the plot files. One page holds the session at a time.
*/
#ifndef TERVAN_WEB_SERVER_H
#define TERVAN_WEB_SERVER_H

#include <string>

namespace hostapp {

struct WebServerSetup {
    std::string outputDir;          /* plot files (SVG, CSV) are served from here */
    std::string diagramPicture;     /* SVG text; empty when there is none */
};

/* Binds 127.0.0.1:port (0: a free port). False with a message; else boundPort is the port. */
bool openWebServer(const WebServerSetup &setup, int port, int &boundPort, std::string &error);

/* Serves on the calling thread until stopWebServer. */
void runWebServer();

/* Safe from any thread. */
void stopWebServer();

}

#endif
