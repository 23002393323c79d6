/* The functions of the device SDK that the library calls. An integrator implements them in
 * libov_sdk.so; the program graphql-platform-check tests that implementation.
 *
 * Texts are NUL-terminated bytes, UTF-8 where people read them. A text that is passed in belongs to
 * the caller: the SDK reads it during the call only and copies what it keeps. A text that is
 * returned belongs to the SDK; the library copies it at once and never frees it.
 *
 * Threads: every function may be called from any thread, and from several at once. One open
 * configuration is used by one thread at a time. No function calls back into the library.
 *
 * Failures: no function of this file reports one through errno or an exception. What a caller sees
 * instead is stated at each function. */

#ifndef PLATFORM_OV_SDK_H_
#define PLATFORM_OV_SDK_H_

/* Lets the compiler compare a printf format with its values, where the compiler can. */
#if defined(__GNUC__)
#define OV_SDK_PRINTF_FORMAT(text, values) __attribute__((format(printf, text, values)))
#else
#define OV_SDK_PRINTF_FORMAT(text, values)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* --- Configuration values ----------------------------------------------------------------------
 * The functions below work on a configuration that CfgWrapper has opened, and only in memory: a
 * file is written by CfgWrapper::save() and saveAndClose(). */

/* An open configuration file. Its members belong to the implementation. CfgWrapper creates and
 * frees it; the pointer is not used after that. */
typedef struct ov_config ov_config;

/* Returns the integer of `key`, also one that was written since the file was opened. Returns
 * `default_value` when the configuration has no such key, or when the value is not an integer of
 * 32 bits. Reading never creates the key. */
int ReadInt(ov_config* config, const char* key, int default_value);

/* Returns the text of `key`, byte for byte as WriteString() took it; an empty text is a value. The
 * result is `default_value` when the configuration has no such key, or when the value is a secret.
 * Never returns null unless `default_value` is null: std::string throws std::logic_error on a null
 * text, and the exception reaches the program that called the library. The result stays valid until
 * the next call for the same configuration. */
const char* ReadString(ov_config* config, const char* key, const char* default_value);

/* Returns the clear text of a value that WriteSecret() took, under the rules of ReadString(). A
 * secret that cannot be decrypted reads as `default_value`, for example when it was damaged or when
 * the key of the device changed. The library then counts the customer as signed out. */
const char* ReadSecret(ov_config* config, const char* key, const char* default_value);

/* Sets `key` to an integer, any value of 32 bits. Replaces a value of any kind. The change is
 * visible to the reading functions at once and is in the file after the next save. Returns nothing:
 * the library does not learn of a failure. */
void WriteInt(ov_config* config, const char* key, int value);

/* Sets `key` to a copy of `text`, which can have any bytes but NUL: line feeds, quotes, "=" and
 * bytes that are not UTF-8 included. Otherwise like WriteInt(). */
void WriteString(ov_config* config, const char* key, const char* text);

/* Sets `key` to a copy of `text` as a secret: a token or a customer's data. The file must not show
 * the text, nor an encoding of it that anybody can reverse without a key of the device. When the
 * text cannot be encrypted, it is not written at all. Otherwise like WriteString(). */
void WriteSecret(ov_config* config, const char* key, const char* text);

/* --- Identity of the device ------------------------------------------------------------------- */

/* Each of the three returns a text that stays valid and unchanged until the process ends, and never
 * null. The texts go into HTTP request headers: they have no control characters and no line end.
 * The library calls each function once per process, when it builds the first request headers.
 *
 * The model, such as "QX417". The library sends its digits. */
const char* GetDeviceModel(void);
/* The version of the firmware, such as "3.2.105". */
const char* GetSoftwareVersion(void);
/* The serial number: tells one device from all others, and is the same after a restart. A device
 * without one returns an empty text; the store service then cannot recognise the device. */
const char* GetSerialNumber(void);

/* The width and height of the screen in pixels, in the orientation in which the device is used
 * normally. Called once per process. The library writes both numbers into the User-Agent header and
 * does not check them. Where the screen is not known, return the size of a usual one, else 0. */
int ScreenWidth(void);
int ScreenHeight(void);

/* --- Tasks --------------------------------------------------------------------------------------
 * A task is a process that runs one application and that lives on when the process that started it
 * ends. The library starts one application: /ombrel/bin/graphql_sample_metadata.app. */

/* Looks for a task whose executable has this full path. Returns a value greater than 0 when one
 * runs: usually its number. Returns 0 or less when none runs, when the path does not exist, or when
 * the tasks cannot be listed; the library then starts one. A task that has ended is not found. */
int FindTaskByAppName(const char* path);

/* Starts an executable as a new task and does not wait for its end.
 *
 * path        full path of the executable
 * arguments   its argument vector, which ends with a null pointer; the first entry is `path`
 * app_name    name under which the task manager lists the application; the library passes the file
 *             name of the executable
 * name        title of the task for people; the library passes `app_name` again
 * reserved    unused; the library passes null
 * flags       options of the device's task manager; the library passes 37 (0x25). Their meaning is
 *             the task manager's; an SDK without a task manager ignores them, and both names
 *
 * The caller frees all texts and the vector as soon as the call returns: copy what is used later.
 * The task has a separate session, so that it survives the caller, and inherits no descriptor
 * above 2: an inherited descriptor would keep the lock of the sample queue. The environment is the
 * caller's. Returns a value greater than 0, usually the number of the task, or 0 or less when the
 * executable could not be started. The library ignores the result. */
int NewTask(const char* path, char* const* arguments, const char* app_name, const char* name,
            const void* reserved, unsigned int flags);

/* --- Log -------------------------------------------------------------------------------------- */

/* Writes one line to the log of the device. A failure to write it is not reported.
 *
 * level       2 for failures, 5 for information; the lower, the more important. Which levels are
 *             kept is the implementation's choice; at 5 the lines have passwords and tokens
 * file, line  the source file and its line
 * function    signature of the function that logs
 * format      printf format of the message, followed by its values
 *
 * Values can have any bytes, "%" and line feeds included, and be as long as a response of the
 * server: megabytes. The format is used once: a "%" in a value is text. Lines of several threads do
 * not mix. */
void ov_print_log2(int level, const char* file, int line, const char* function, const char* format,
                   ...) OV_SDK_PRINTF_FORMAT(5, 6);

#ifdef __cplusplus
}
#endif

#endif /* PLATFORM_OV_SDK_H_ */
