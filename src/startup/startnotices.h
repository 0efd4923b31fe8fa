#pragma once

namespace hollowmere {

/// Whether the hint about connection strings is shown: on 64-bit Windows, until the user wants no more.
constexpr bool warnsAbout64Bit(bool wanted, bool isWindows, bool is64Bit) {
  return wanted && isWindows && is64Bit;
}

/// Of the machine that this runs on.
bool runsOnWindows();
bool runsOn64Bit();

/// Milliseconds from the first showing of the main window to the notices.
inline constexpr int noticeDelay = 6000;

namespace noticetexts {
inline constexpr char bit64[] =
    "You run Hollowmere on 64 bit Windows operating system. It is recommended to use the following Oracle "
    "database "
    "connection string syntax:\r"
    "<database host name or database IP address>:<port(by default,1521)>:<Oracle SID>\r"
    "For example, dbhost:1521:DBORA\r"
    "You can also use 32 bit version of Oracle client software if it is installed on your 64 bit Windows "
    "workstation. "
    "In this case, simply use TNSNAMES.ORA alias for your Oracle database connection.\r"
    "Would you like to show this warning message again?";
}  // namespace noticetexts

}  // namespace hollowmere
