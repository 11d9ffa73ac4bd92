/* Shares one conversion among threads of the program: each converts rows of its own. Prints whether
 * the result is that of one thread. */
#include <KestrixPixelConversion.h>

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { WIDTH = 1280, HEIGHT = 720, THREADS = 4, V210_ROW = 3424, BGRA_ROW = 5120 };

typedef struct slice {
    const kestrix_picture* src;
    const kestrix_picture* dst;
    uint32_t first_row;
    uint32_t end_row;
    kestrix_status status;
} slice;

static void* convert_slice(void* argument)
{
    slice* s = argument;
    s->status = kestrix_convert_rows(s->src, s->dst, s->first_row, s->end_row, 0);
    return NULL;
}

int main(void)
{
    static unsigned char captured[V210_ROW * HEIGHT];
    static unsigned char shown[BGRA_ROW * HEIGHT];
    static unsigned char expected[BGRA_ROW * HEIGHT];
    kestrix_picture src = {.struct_size = sizeof src,
                           .format = KESTRIX_FORMAT_v210,
                           .colorspace = KESTRIX_COLORSPACE_709,
                           .width = WIDTH,
                           .height = HEIGHT,
                           .row_bytes = V210_ROW,
                           .bytes = captured,
                           .size = sizeof captured};
    kestrix_picture dst = {.struct_size = sizeof dst,
                           .format = KESTRIX_FORMAT_BGRA,
                           .colorspace = KESTRIX_COLORSPACE_709,
                           .width = WIDTH,
                           .height = HEIGHT,
                           .row_bytes = BGRA_ROW,
                           .bytes = shown,
                           .size = sizeof shown};
    kestrix_picture whole = dst;
    pthread_t threads[THREADS];
    slice slices[THREADS];
    uint32_t i;

    whole.bytes = expected;
    for (i = 0; i < sizeof captured; ++i)
        captured[i] = (unsigned char)(rand() & 63);
    if (kestrix_convert(&src, &whole, 0) != KESTRIX_OK)
        return 1;

    for (i = 0; i < THREADS; ++i) {
        slice s = {&src, &dst, i * HEIGHT / THREADS, (i + 1) * HEIGHT / THREADS, KESTRIX_OK};
        slices[i] = s;
        if (pthread_create(&threads[i], NULL, convert_slice, &slices[i]) != 0)
            return 1;
    }
    for (i = 0; i < THREADS; ++i) {
        pthread_join(threads[i], NULL);
        if (slices[i].status != KESTRIX_OK) {
            fprintf(stderr, "convert_slices: %s\n", kestrix_status_words(slices[i].status));
            return 1;
        }
    }
    if (memcmp(shown, expected, sizeof shown) != 0)
        return 1;
    puts("four slices give the bytes of the whole");
    return 0;
}
