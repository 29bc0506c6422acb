#include "util/mail/pickup_directory.h"

#include "util/mail/mail_setting.h"
#include "util/text/byte_string.h"

namespace util {

std::string pickup_directory() {
    std::string own =
        mail_setting("SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server", "EmailPickupDir");
    if (!own.empty()) return own;

    const std::string mail_server =
        mail_setting("SOFTWARE\\Microsoft\\Exchange\\Setup", "ExchangeServerAdmin");
    if (!mail_server.empty()) return mail_server + "\\" + "\\Mailroot\\vsi 1\\Pickup";

    const String web_root = mail_setting(web_server_key, "PathWWWRoot");
    if (web_root.empty()) return {};
    return web_root.replace("\\wwwroot", "").str() + "\\" + "\\mailroot\\Pickup\\";
}

}  // namespace util
