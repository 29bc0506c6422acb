/// @file
/// `email`: sends plain-text notices through the pickup directory of the local mail service.
#ifndef UTIL_MAIL_EMAIL_H
#define UTIL_MAIL_EMAIL_H

#include "util/export.h"
#include "util/text/byte_string.h"

/// A plain-text notice: a sender, a list of recipients separated by `";"`, a subject and a body,
/// all in UTF-8.
///
/// Sending uses no mail protocol. It writes one message file per recipient into the directory from
/// which the mail service (part of the machine's web server, or a local mail server) takes
/// messages.
///
///     email notice("agent@example.test", "", "disk full", "Volume D: has no room left.");
///     notice.updateTo("admin@x.test");
///     notice.updateTo("night@x.test");   // getTo() is "admin@x.test;night@x.test"
///     if (notice.send() != 0) log(notice.GetLastErrorMessage());
///
/// Remove line ends from a sender, a subject or a recipient that comes from outside.
///
/// The pickup directory is looked up again for each recipient, under `HKEY_LOCAL_MACHINE`. The
/// first of these values that is set counts. The ones after it are not read:
///
/// 1. `"EmailPickupDir"` of `"SOFTWARE\Vorn\Vorn Quillmark Tessaron\Server"`, unchanged
/// 2. `"ExchangeServerAdmin"` of `"SOFTWARE\Microsoft\Exchange\Setup"`, followed by
///    `"\\Mailroot\vsi 1\Pickup"`
/// 3. `"PathWWWRoot"` of `"SOFTWARE\Microsoft\InetStp"` without every `"\wwwroot"` in it,
///    followed by `"\\mailroot\Pickup"` and one more backslash
///
/// The doubled backslashes are by design. A value is set if it is a text (`REG_SZ`, or
/// `REG_EXPAND_SZ`, which is not expanded), is not empty, takes at most 260 bytes and ends in a
/// NUL.
///
/// The pickup directory and the directory for temporary files must have names that the code page of
/// file calls holds exactly: the platform's calls for temporary names are its ANSI ones. A
/// directory with another name counts as missing (267). Nothing is written to one with a similar
/// name.
///
/// A message has six header lines and the body. Each header line ends in `"\r\n"`:
///
///     From: agent@example.test
///     To: admin@example.test
///     MIME-Version: 1.0
///     Content-type: text/plain; charset= utf-8
///     Content-Transfer-Encoding: quoted-printable
///     Subject: disk full
///
/// By design, no blank line precedes the body, and nothing is encoded. The texts are written
/// unchanged, so a line end in the sender, the subject or inside a recipient adds header lines.
///
/// The pickup directory never shows a part of a message if it is on the same volume as
/// the directory for temporary files, even if the process is killed. A message is written in the
/// directory for temporary files and then moved. Besides whole messages, the pickup directory may
/// only contain an empty file `"tsrN.tmp"`, which keeps the name of `"tsrN.tmp1"` until just before
/// the move. A message never replaces another: a name that is taken is skipped.
///
/// If the two directories are on different volumes, the move is a copy. The message is then visible
/// while it grows. A kill then leaves the copied part there, and the whole message under its
/// temporary name.
///
/// Threads: one object belongs to one thread at a time. Different objects, and different
/// processes, may send at the same time. Every member except the getters, isReady() and isNull()
/// may raise std::bad_alloc, and nothing else.
class UTIL_API email {
  public:
    /// All five texts are empty.
    email();

    /// Sets the four fields. The error message is empty.
    email(String const& from, String const& to, String const& subject, String const& body);

    /// @{
    /// Copies all five texts, including the error message, as String does.
    email(email const& other);
    email& operator=(email const& other);
    /// @}
    ~email();

    /// @{
    /// Returns a field. Valid until the object changes or is destroyed.
    String const& getFrom() const;
    String const& getTo() const;
    String const& getSubject() const;
    String const& getBody() const;
    /// @}

    /// Returns the text of the last failure, `""` before any failure. Success does not clear it.
    /// Valid until the object changes or is destroyed.
    String const& GetLastErrorMessage() const;

    /// @{
    /// Appends `text`, up to its first NUL, to a field. Does nothing if the field already contains
    /// it anywhere: `updateTo("b@x.test")` does nothing after `updateTo("bob@x.test;eb@x.test")`.
    ///
    /// An empty field becomes `text`. Otherwise a separator comes first: `";"` (from, to), a blank
    /// (subject) or `"\r\n"` (body).
    void updateFrom(String const& text);
    void updateTo(String const& text);
    void updateSubject(String const& text);
    void updateBody(String const& text);
    /// @}

    /// Returns whether all four fields are set (not empty).
    bool isReady() const;

    /// Returns the opposite of isReady().
    bool isNull() const;

    /// Calls send_mail() with the object's own fields. Returns -1, and does nothing else, unless
    /// isReady().
    int send();

    /// Sends one message to each recipient in `to`, in order. Blanks, tabs and line ends around a
    /// recipient are ignored, and an empty recipient is skipped. The other texts may be empty. Does
    /// not use the object's own fields.
    ///
    /// Returns 0 on success and -1 on failure. GetLastErrorMessage() then has the text below:
    /// - `"Win32 API GetTempPath returned failure, GetLastError = %lu"`: nothing was sent.
    /// - `"Win32 API GetTempFileName returned bad name, GetLastError = %lu"`: the platform gives no
    ///   file name, in the directory for temporary files or in the pickup directory. The directory
    ///   is missing, takes no file, is longer than 246 bytes (111) or is full (80). Returns -1 at
    ///   once: this recipient and all after it get nothing.
    /// - `"Unable to query the registry for the pickup directory"`: no value is set. The text above
    ///   replaces it at once, because the platform refuses a directory without a name.
    /// - `"Unable to open the file %s"`: this recipient's message file cannot be opened, or not be
    ///   written as a whole. The next recipient is served.
    /// - no text: this recipient's message could not be moved, or 4096 names in a row were taken in
    ///   the pickup directory. The next recipient is served.
    /// - `"IIS is not installed."`, `"IIS is not running."`: MailInstalled() or MailRunning() is
    ///   false after the last recipient. The second text replaces the first. By design, the
    ///   messages are in the pickup directory all the same, and wait for the service.
    ///
    /// By design, an empty `to` returns 0 with the text `"Invalid To: list specified; To: list= "`.
    /// By design, the result is the last recipient's. An earlier recipient's failure is forgotten.
    ///
    /// A message that did not reach the pickup directory stays in the directory for temporary
    /// files, as `"tsrN.tmp"`. So does an empty file of that name when out of memory.
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
