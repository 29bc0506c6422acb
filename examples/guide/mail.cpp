#include <iostream>

#include "util/mail/mail.h"

int main() {
    email notice("agent@example.test", "admin@example.test", "disk full", "Volume D: is full.");
    notice.updateTo("night@example.test");
    notice.updateTo("admin@example.test");  // already there
    std::cout << "to: " << notice.getTo() << '\n';

    email draft;
    std::cout << std::boolalpha << "draft is ready: " << draft.isReady() << '\n';
    std::cout << "sent: " << draft.send() << '\n';

    // Messages are files in a folder of the mail service. Without it nobody takes them.
    if (!MailInstalled()) {
        std::cout << "no mail service on this machine\n";
    } else if (notice.send() != 0) {
        std::cout << notice.GetLastErrorMessage() << '\n';
    }
}
