// email: a plain-text notice, sent through the pickup directory of the local mail service.
#ifndef UTIL_MAIL_EMAIL_H
#define UTIL_MAIL_EMAIL_H

#include "util/export.h"
#include "util/text/byte_string.h"

// A sender, a list of recipients separated by ";", a subject and a body, all UTF-8. Sending speaks
// no mail protocol: it leaves one message file for each recipient in the directory from which the
// mail service of the machine's web server, or a local mail server, takes what it delivers.
//
// The pickup directory is looked for anew for each recipient, under HKEY_LOCAL_MACHINE. The first
// of these values that is set counts, and the ones behind it are not read:
//   1. "EmailPickupDir" of "SOFTWARE\Vorn\Vorn Quillmark Tessaron\Server", as it stands
//   2. "ExchangeServerAdmin" of "SOFTWARE\Microsoft\Exchange\Setup", with "\\Mailroot\vsi 1\Pickup"
//      behind it
//   3. "PathWWWRoot" of "SOFTWARE\Microsoft\InetStp" without any "\wwwroot" in it, with
//      "\\mailroot\Pickup\" behind it
// The doubled backslashes are meant. A value is set when it is a text (REG_SZ, or REG_EXPAND_SZ,
// which is not expanded), is not empty, and takes at most 260 bytes, the last of them a NUL.
//
// A message is six header lines and the body, each header ended by "\r\n":
//     From: agent@example.test
//     To: admin@example.test
//     MIME-Version: 1.0
//     Content-type: text/plain; charset= utf-8
//     Content-Transfer-Encoding: quoted-printable
//     Subject: disk full
// Meant as they are: no blank line precedes the body, and nothing is encoded. The texts are written
// as they stand, so a line end in the sender, the subject or within a recipient makes more headers.
//
// Nothing half-written: a message is written in the directory for temporary files and then moved,
// so that on one volume the pickup directory never shows a message that is not whole, whenever the
// process may be killed. All it may find besides is an empty file "tsrN.tmp", which keeps the name
// of "tsrN.tmp1" until just before the move. When the two directories are on different volumes the
// move is a copy: a message is then in sight while it grows, and a kill leaves the part that was
// copied there, with the whole message still under its temporary name. No message replaces
// another: a name that is taken is passed over.
//
// Threads: one object belongs to one thread at a time. Different objects, and different processes,
// may send at the same time. Every member but the getters, isReady() and isNull() may raise
// std::bad_alloc, and nothing else.
//
//     email notice("agent@example.test", "", "disk full", "Volume D: has no room left.");
//     notice.updateTo("admin@x.test");
//     notice.updateTo("night@x.test");   // getTo() is "admin@x.test;night@x.test"
//     if (notice.send() != 0) log(notice.GetLastErrorMessage());
class UTIL_API email {
  public:
    email();  // five empty texts

    // These four fields, and no error message.
    email(String const& from, String const& to, String const& subject, String const& body);

    // Copy all five texts, the error message too, as String copies and assigns.
    email(email const& other);
    email& operator=(email const& other);
    ~email();

    // Valid until the object changes or goes.
    String const& getFrom() const;
    String const& getTo() const;
    String const& getSubject() const;
    String const& getBody() const;

    // Why sending failed last; "" before any failure. Success does not clear it.
    String const& GetLastErrorMessage() const;

    // Add text to a field, unless the field contains it already, anywhere: updateTo("b@x.test")
    // does nothing after updateTo("bob@x.test;eb@x.test"). The new text becomes an empty field;
    // else it goes behind ";" (from, to), a blank (subject) or "\r\n" (body). It ends at its first
    // NUL.
    void updateFrom(String const& text);
    void updateTo(String const& text);
    void updateSubject(String const& text);
    void updateBody(String const& text);

    // Whether none of the four fields is empty; isNull() is the opposite.
    bool isReady() const;
    bool isNull() const;

    // send_mail() of the object's own fields; -1, and nothing else happens, unless it isReady().
    int send();

    // Drops one message for each recipient, in their order; blanks, tabs and line ends around a
    // recipient do not count, and an empty one is skipped. None of the texts but to decides
    // anything: they may be empty, and the object's own fields play no part.
    //
    // 0 on success. Otherwise -1, with the reason in GetLastErrorMessage() where one is named:
    // - "Win32 API GetTempPath returned failure, GetLastError = %lu": nothing was sent.
    // - "Win32 API GetTempFileName returned bad name, GetLastError = %lu": the directory for
    //   temporary files or the pickup directory is missing, takes no file, is longer than 246 bytes
    //   (111) or is full (80). This recipient and all after it get nothing.
    // - "Unable to query the registry for the pickup directory": no value is set. The one above
    //   takes its place at once, since the platform refuses a directory without a name.
    // - "Unable to open the file %s": this recipient's file cannot be opened, or not be written
    //   whole; the next one is tried.
    // - no text: this recipient's message could not be moved; the next one is tried.
    // - "IIS is not installed.", "IIS is not running.": what MailInstalled() and MailRunning() say
    //   in the end, the second in place of the first. The messages wait in the pickup directory all
    //   the same; this is meant.
    //
    // Meant as they are: an empty to gives 0 with the message "Invalid To: list specified; To:
    // list= "; one recipient's failure is forgotten when a later one succeeds. A message that did
    // not reach the pickup directory stays in the directory for temporary files, as "tsrN.tmp".
    int send_mail(String const& from, String const& to, String const& subject, String const& body);

  private:
    // The layout is fixed: programs derive from and embed this class.
    String m_error;
    String m_from;
    String m_to;
    String m_subject;
    String m_body;
};

#endif
