#ifndef TRESK_EXPORT_H
#define TRESK_EXPORT_H

#include <QtGlobal>

/// Marks what the shared library offers; everything else stays hidden inside it.
#ifdef TRESK_LIBRARY
#define TRESK_EXPORT Q_DECL_EXPORT
#else
#define TRESK_EXPORT Q_DECL_IMPORT
#endif

#endif
