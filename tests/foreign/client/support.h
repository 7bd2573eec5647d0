// What a program without a runtime has to bring along.
#pragma once

unsigned length_of(const char* text);
bool equal(const char* a, const char* b);
bool contains(const char* text, const char* part);
bool near_to(double a, double b); // to a millionth

void write_file(const char* name, const char* bytes, unsigned size);
// The file's first bytes, terminated; in a place that the next call uses again.
const char* read_file(const char* name);

// Tells which check failed, and makes the program's exit code 1.
void check(bool condition, const char* text, int line);
#define CHECK(condition) check(condition, #condition, __LINE__)

void main_program();
