#pragma once

#include <libpq-fe.h>

namespace Vellumine {

// The functions of libpq that the PostgreSQL back-end calls. libpq is loaded the first time
// a PostgreSQL library is opened, not when vellumine starts: with what it pulls in (OpenSSL,
// Kerberos, LDAP) it took longer to map than the rest of the program, on every command and
// every start of the server an application launches, also for the many whose library is an
// SQLite file.
#define VELLUMINE_LIBPQ_FUNCTIONS(F)                                                               \
    F(PQclear)                                                                                     \
    F(PQconnectdbParams)                                                                           \
    F(PQconsumeInput)                                                                              \
    F(PQerrorMessage)                                                                              \
    F(PQescapeIdentifier)                                                                          \
    F(PQexec)                                                                                      \
    F(PQexecPrepared)                                                                              \
    F(PQfinish)                                                                                    \
    F(PQfreemem)                                                                                   \
    F(PQgetisnull)                                                                                 \
    F(PQgetlength)                                                                                 \
    F(PQgetvalue)                                                                                  \
    F(PQnotifies)                                                                                  \
    F(PQntuples)                                                                                   \
    F(PQprepare)                                                                                   \
    F(PQresultErrorField)                                                                          \
    F(PQresultStatus)                                                                              \
    F(PQsetNoticeProcessor)                                                                        \
    F(PQsocket)                                                                                    \
    F(PQstatus)                                                                                    \
    F(PQuser)

struct Libpq {
#define VELLUMINE_LIBPQ_POINTER(name) decltype(&::name) name = nullptr;
    VELLUMINE_LIBPQ_FUNCTIONS(VELLUMINE_LIBPQ_POINTER)
#undef VELLUMINE_LIBPQ_POINTER
};

// libpq, loaded once; throws CatalogError saying what is missing when it cannot be loaded
// (Debian's libpq5 not installed, say), so that only PostgreSQL libraries need it.
const Libpq& libpq();

} // namespace Vellumine
