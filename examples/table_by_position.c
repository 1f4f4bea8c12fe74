/* Reaches the table of operations by position, as any language that can call through a pointer
 * does: an instance begins with a pointer to sixty function pointers, each taking the instance
 * first. The positions are those of <orvo/instance.h>. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <orvo/records.h>

enum {
  SLOT_DESTROY = 0,
  SLOT_GET_VERSION = 18,
  SLOT_IS_IMAGE_FILE_NAME = 51,
  SLOT_GET_FILE_EXTENSIONS = 53
};
enum { RELEASE_MEMORY = 1 };

typedef void (*Operation)(void);
typedef struct Instance {
  const Operation* table;
} Instance;

typedef void (*Destroy)(Instance* self, unsigned flag);
typedef int (*GetVersion)(Instance* self, ORVOVERSIONINFO* info);
typedef int (*IsImageFileName)(Instance* self, const char* path);
typedef int (*GetFileExtensions)(Instance* self, int* count, char* buffer, uint32_t* size);

/* The library's factory. */
Instance* CreateORVOInstance(void);

static void print_version(Instance* toolkit) {
  LTVERSIONINFO module = {.size = sizeof module};
  ORVOVERSIONINFO info = {.vendorInfo = &module};
  /* Its own version is told even when the imaging module is missing. */
  const int code = ((GetVersion)toolkit->table[SLOT_GET_VERSION])(toolkit, &info);
  printf("version %s", info.version);
  if (code == 0) printf(", with %s %s", module.product, module.version);
  printf("\n");
}

static void print_file_names(Instance* toolkit) {
  static const char* const names[] = {"holiday.jpg", "C:\\scans\\page.TIF", "notes.txt", "jpg"};
  const IsImageFileName is_image = (IsImageFileName)toolkit->table[SLOT_IS_IMAGE_FILE_NAME];
  for (size_t i = 0; i < sizeof names / sizeof names[0]; ++i) {
    printf("%-18s %s\n", names[i], is_image(toolkit, names[i]) ? "image" : "no image");
  }
}

/* A first call learns the size, the second fills the buffer: names one after the other, each closed
 * by a NUL. 0 on success. */
static int print_extensions(Instance* toolkit) {
  const GetFileExtensions get = (GetFileExtensions)toolkit->table[SLOT_GET_FILE_EXTENSIONS];
  int count = 0;
  uint32_t size = 0;
  get(toolkit, &count, NULL, &size);
  char* const names = malloc(size);
  if (names == NULL) return 1;
  const int code = get(toolkit, &count, names, &size);
  if (code == 0) {
    printf("%d extensions:", count);
    for (const char* name = names; *name != '\0'; name += strlen(name) + 1) printf(" %s", name);
    printf("\n");
  }
  free(names);
  return code;
}

int main(void) {
  Instance* const toolkit = CreateORVOInstance();
  if (toolkit == NULL) {
    fprintf(stderr, "out of memory\n");
    return 1;
  }
  print_version(toolkit);
  print_file_names(toolkit);
  const int code = print_extensions(toolkit);
  ((Destroy)toolkit->table[SLOT_DESTROY])(toolkit, RELEASE_MEMORY);
  return code == 0 ? 0 : 1;
}
