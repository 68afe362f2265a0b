/* The C interface: the functions of gnssqc.h for C and for languages that call C, in liborsolva_c.so.
 *
 *   orsolva_session* session = orsolva_create();
 *   orsolva_config_init(&config, sizeof config);
 *   status = orsolva_start(session, &config, sizeof config, &navigation, sizeof navigation);
 *   if (status == ORSOLVA_OK) status = orsolva_feed(session, epochs, count, sizeof epochs[0]);
 *   if (status == ORSOLVA_OK) status = orsolva_result(session, &result, sizeof result);
 *   orsolva_destroy(session);
 *
 * The records are those of records.h (for C: records_c.h). Every record goes with its size, so that a host
 * which lays it out in another way gets ORSOLVA_BAD_SIZE and not a wrong figure. No exception leaves a
 * function. A session belongs to one thread at a time; different sessions share nothing. */
#ifndef ORSOLVA_INTERFACE_ORSOLVA_C_H
#define ORSOLVA_INTERFACE_ORSOLVA_C_H

#include <stddef.h>
#include <stdint.h>

#include "signals.h"
#include "version.h"
#ifdef __cplusplus
#include "records.h"
#else
#include "records_c.h"
#endif

#if defined(_WIN32) && defined(ORSOLVA_BUILDS_C_LIBRARY)
#define ORSOLVA_C_EXPORT __declspec(dllexport)
#elif defined(_WIN32)
#define ORSOLVA_C_EXPORT __declspec(dllimport)
#elif defined(__GNUC__)
#define ORSOLVA_C_EXPORT __attribute__((visibility("default")))
#else
#define ORSOLVA_C_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** Grows when a host built against an older header can no longer use the library: it is in the name
 * liborsolva_c.so.1. */
#define ORSOLVA_C_ABI 1

/** What the functions return; the first five are those of the library. */
typedef int32_t orsolva_status;
enum {
  ORSOLVA_OK = 1,
  ORSOLVA_NO_DATA = 0,         /**< no usable epoch in the batch, or no batch taken so far */
  ORSOLVA_NO_NAVIGATION = -1,  /**< the navigation set holds no record */
  ORSOLVA_NO_POSITION = -2,    /**< no position is given and none could be computed */
  ORSOLVA_INTERNAL_ERROR = -3, /**< an error inside the library, for example no memory */
  ORSOLVA_NOT_STARTED = -100,
  ORSOLVA_ALREADY_STARTED = -101, /**< another run needs another session */
  ORSOLVA_BAD_ARGUMENT = -103,    /**< a null pointer, or a count that does not fit */
  ORSOLVA_NO_MEMORY = -104,
  ORSOLVA_IMPLAUSIBLE = -105, /**< the record is filled: more epochs than the interval allows */
  ORSOLVA_BAD_SIZE = -200     /**< the record of the host has another size than the library's */
};

/** One run. */
typedef struct orsolva_session orsolva_session;

/** @return ORSOLVA_C_ABI of the loaded library */
ORSOLVA_C_EXPORT int32_t orsolva_abi_version(void);

/** @return the version of the loaded library, such as "1.2.9"; never null, valid for ever */
ORSOLVA_C_EXPORT const char* orsolva_version(void);

/** @return one sentence without a full stop; never null, valid for ever */
ORSOLVA_C_EXPORT const char* orsolva_status_text(orsolva_status status);

/** Fills a configuration with the defaults: every system, satellite and band, cut-off 10 degrees, no
 * position. The interval is 1 s; a host sets that of its epochs. */
ORSOLVA_C_EXPORT orsolva_status orsolva_config_init(config_qct* config, size_t config_size);

/** @return a session that waits for orsolva_start; null when there is no memory */
ORSOLVA_C_EXPORT orsolva_session* orsolva_create(void);

/** Frees a session. Null is ignored. */
ORSOLVA_C_EXPORT void orsolva_destroy(orsolva_session* session);

/** Takes configuration and navigation set; both may go away afterwards. After a failure the session is as
 * before.
 */
ORSOLVA_C_EXPORT orsolva_status orsolva_start(orsolva_session* session, const config_qct* config,
                                              size_t config_size, const NavBodyData_QC_gbt* navigation,
                                              size_t navigation_size);

/** Takes one batch, its epochs in time order and later than those before. After ORSOLVA_NO_DATA and
 * ORSOLVA_NO_POSITION others may follow; ORSOLVA_INTERNAL_ERROR leaves the run incomplete.
 * @param session     started
 * @param epochs      `count` of them
 * @param count       at most 2,147,483,647
 * @param epoch_size  sizeof one epoch
 * @return ORSOLVA_OK, or why the batch is not part of the run */
ORSOLVA_C_EXPORT orsolva_status orsolva_feed(orsolva_session* session, const ObsEpoch_QC_gbt* epochs,
                                             size_t count, size_t epoch_size);

/** The result of all batches so far; may be asked for at any time and changes nothing. The record is written
 * for ORSOLVA_OK and ORSOLVA_IMPLAUSIBLE only. */
ORSOLVA_C_EXPORT orsolva_status orsolva_result(const orsolva_session* session, result_qct* result,
                                               size_t result_size);

/** The result per signal code; the same rules. */
ORSOLVA_C_EXPORT orsolva_status orsolva_code_result(const orsolva_session* session,
                                                    total_code_qc_result* result, size_t result_size);

#ifdef __cplusplus
}
#endif

#endif /* ORSOLVA_INTERFACE_ORSOLVA_C_H */
