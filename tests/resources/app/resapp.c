/*
 * A C program that carries app.rc and reads its own resources back: built
 * in the tree, through pkg-config with olmo-rc, and through
 * find_package(Olmo) with olmo_add_resources.  Usage: resapp <logo.bmp>;
 * exits 0 when every check holds.
 */
#include <windows.h>
#include <afxres.h>

#include <stdio.h>
#include <string.h>

#include "resource.h"

static int failures;

static void check(int ok, const char *what)
{
    if (!ok) {
        fprintf(stderr, "resapp: FAILED: %s (GetLastError %lu)\n", what,
                (unsigned long)GetLastError());
        ++failures;
    }
}

static const unsigned char *lockData(LPCSTR name, LPCSTR type, DWORD *size)
{
    HRSRC h = FindResourceA(NULL, name, type);
    if (!h)
        return NULL;
    *size = SizeofResource(NULL, h);
    return (const unsigned char *)LockResource(LoadResource(NULL, h));
}

/* The title of a DIALOG template without menu or class. */
static void dialogTitle(const unsigned char *p, DWORD size, char *out, size_t max)
{
    size_t i = 18 + 2 + 2, n = 0; /* header, then the empty menu and class */
    while (i + 1 < size && n + 1 < max && (p[i] || p[i + 1])) {
        out[n++] = (char)p[i];
        i += 2;
    }
    out[n] = '\0';
}

int main(int argc, char **argv)
{
    static const struct {
        LPCSTR type;
        LPCSTR byOrdinal;
        LPCSTR byName;
    } table[] = {
        {RT_GROUP_ICON, MAKEINTRESOURCEA(IDI_APP), "namedicon"},
        {RT_GROUP_CURSOR, MAKEINTRESOURCEA(IDC_POINTER), "#2"},
        {RT_BITMAP, MAKEINTRESOURCEA(IDB_LOGO), "#3"},
        {RT_DIALOG, MAKEINTRESOURCEA(IDD_ABOUT), "Settings"},
        {RT_MENU, MAKEINTRESOURCEA(IDM_MAIN), "Context"},
        {RT_ACCELERATOR, MAKEINTRESOURCEA(IDA_MAIN), "#300"},
        {RT_STRING, MAKEINTRESOURCEA(IDS_HELLO / 16 + 1), "#2"},
    };
    size_t i;
    DWORD size = 0;
    const unsigned char *p;
    char title[64];
    FILE *bmp;
    long bmpSize = -1;

    for (i = 0; i < sizeof table / sizeof table[0]; ++i) {
        check(FindResourceA(NULL, table[i].byOrdinal, table[i].type) != NULL, "by ordinal");
        check(FindResourceA(NULL, table[i].byName, table[i].type) != NULL, "by name");
    }

    p = lockData(MAKEINTRESOURCEA(IDD_ABOUT), RT_DIALOG, &size);
    check(p != NULL && ((uintptr_t)p & 3) == 0, "dialog data, aligned");
    if (p) {
        dialogTitle(p, size, title, sizeof title);
        check(strcmp(title, "About Olmo") == 0, "dialog title");
        check(p[8] == 4 && p[9] == 0, "dialog item count");
    }

    p = lockData(MAKEINTRESOURCEA(IDS_HELLO / 16 + 1), RT_STRING, &size);
    /* Block 1 starts with string 0 (absent), then IDS_HELLO. */
    check(p != NULL && size > 4 && p[2] == 12 && p[4] == 'H' && p[26] == 'd', "string table");

    if (argc > 1 && (bmp = fopen(argv[1], "rb")) != NULL) {
        fseek(bmp, 0, SEEK_END);
        bmpSize = ftell(bmp);
        fclose(bmp);
    }
    p = lockData(MAKEINTRESOURCEA(IDB_LOGO), RT_BITMAP, &size);
    check(p != NULL && (long)size == bmpSize - 14, "bitmap size is the file less 14 bytes");

    if (failures == 0)
        printf("resapp: all resources found\n");
    return failures == 0 ? 0 : 1;
}
