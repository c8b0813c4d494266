/*
** hostapp/web_assets.h: the page's static files (web/), compiled into praxa so that the
** server needs no files beside it. The build generates their table from web/.
*/
#ifndef TERVAN_WEB_ASSETS_H
#define TERVAN_WEB_ASSETS_H

#include <cstddef>
#include <vector>

namespace hostapp {

struct WebAsset {
    const char *path;           /* "/app.js" */
    const char *contentType;
    const char *data;
    size_t size;
};

const std::vector<WebAsset> &webAssets();

}

#endif
