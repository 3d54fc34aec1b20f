/* The C interface of an instrument, as a binding may find it. Invented for this example: no such library exists.
 *
 * Every function but vv_close and vv_free may be called on any thread, also inside a callback. Callbacks come one at a
 * time on the one thread that the library has for a device. */
#ifndef VENDORVNA_H
#define VENDORVNA_H

#include <stddef.h> /* NOLINT(modernize-deprecated-headers) */
#include <stdint.h> /* NOLINT(modernize-deprecated-headers) */

#ifdef __cplusplus
extern "C" {
#endif

typedef struct vv_device vv_device;

enum { VV_OK, VV_NO_FILE, VV_NO_SPACE, VV_BAD_NAME, VV_NO_REGISTER, VV_CLOSED };

/* What a status means, in English. Lasts as long as the program, as every text does that this library returns. */
const char* vv_text(int status);

/* Null if there is no instrument at the address. */
vv_device* vv_open(const char* address);

/* Answers every request that is still outstanding, with VV_CLOSED, and ends the thread: nothing calls back any more.
 * Every later call returns VV_CLOSED. Not inside a callback, unless the device is closed already. */
void vv_close(vv_device* device);

/* Gives the memory back. The device is closed. */
void vv_free(vv_device* device);

const char* vv_model(vv_device* device);

/* Events come from now on. There is one handler, for good. */
enum { VV_EVENT_GONE, VV_EVENT_BACK, VV_EVENT_SERIAL_PROGRESS };
typedef void (*vv_handler)(void* context, int event, unsigned done, unsigned total);
void vv_listen(vv_device* device, vv_handler handler, void* context);

/* Requests. A status other than VV_OK says that the request was refused: no answer comes. The data of an answer is the
 * library's own and lasts until the callback returns. */
typedef void (*vv_answer)(void* context, int status, const void* data, size_t size);

typedef struct vv_file {
    char name[32];
    uint64_t size;
} vv_file;

typedef struct vv_space {
    uint64_t total;
    uint64_t used;
} vv_space;

int vv_list_files(vv_device* device, vv_answer answer, void* context); /* data: vv_file, one after the other */
int vv_file_space(vv_device* device, vv_answer answer, void* context); /* data: vv_space */
int vv_read_file(vv_device* device, const char* name, vv_answer answer, void* context); /* data: the contents */
int vv_write_file(vv_device* device, const char* name, const void* data, size_t size, vv_answer answer, void* context);
int vv_delete_file(vv_device* device, const char* name, vv_answer answer, void* context);

int vv_read_serial(vv_device* device, vv_answer answer, void* context); /* data: uint32_t */
/* With VV_EVENT_SERIAL_PROGRESS. The instrument restarts: it is gone, and back, before the answer comes. */
int vv_write_serial(vv_device* device, uint32_t serial, vv_answer answer, void* context);

/* Registers, at once. */
enum { VV_REGISTER_LO_LEAKAGE, VV_REGISTERS };
int vv_get_register(vv_device* device, unsigned number, unsigned* value);
int vv_set_register(vv_device* device, unsigned number, unsigned value);

#ifdef __cplusplus
}
#endif

#endif
