/* The functions of the device SDK that the library calls. All texts are NUL-terminated; a text that
 * a function returns belongs to the SDK and is copied at once. Callable from any thread; one open
 * configuration is used by one thread at a time. */

#ifndef PLATFORM_OV_SDK_H_
#define PLATFORM_OV_SDK_H_

#if defined(__GNUC__)
#define OV_SDK_PRINTF_FORMAT(text, values) __attribute__((format(printf, text, values)))
#else
#define OV_SDK_PRINTF_FORMAT(text, values)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* An open configuration file. CfgWrapper opens and closes it. */
typedef struct ov_config ov_config;

/* The value of `key`, or the default when the configuration does not hold it. The text stays valid
 * at least until the next call for the same configuration. */
int ReadInt(ov_config* config, const char* key, int default_value);
const char* ReadString(ov_config* config, const char* key, const char* default_value);
/* The clear text of a value that is kept as a secret. */
const char* ReadSecret(ov_config* config, const char* key, const char* default_value);

/* Sets `key` in the open configuration; the file follows when it is saved. Texts are copied. */
void WriteInt(ov_config* config, const char* key, int value);
void WriteString(ov_config* config, const char* key, const char* text);
/* Keeps the text so that the file does not show it. */
void WriteSecret(ov_config* config, const char* key, const char* text);

/* The identity of the device. */
const char* GetDeviceModel(void);
const char* GetSoftwareVersion(void);
const char* GetSerialNumber(void);

/* The size of the screen in pixels. */
int ScreenWidth(void);
int ScreenHeight(void);

/* Greater than 0 when a task runs the application with this full path, else 0 or less. */
int FindTaskByAppName(const char* path);

/* Starts the executable at `path` as a task of its own. `arguments` ends with a null pointer; what
 * the SDK keeps of the arguments it copies. Returns a value greater than 0, or 0 or less when the
 * task could not be started. */
int NewTask(const char* path, char* const* arguments, const char* app_name, const char* name,
            const void* reserved, unsigned int flags);

/* Writes one line to the device's log. Level 2 is for failures, level 5 for information. */
void ov_print_log2(int level, const char* file, int line, const char* function, const char* format,
                   ...) OV_SDK_PRINTF_FORMAT(5, 6);

#ifdef __cplusplus
}
#endif

#endif /* PLATFORM_OV_SDK_H_ */
