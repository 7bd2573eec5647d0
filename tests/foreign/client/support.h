// What a program without a runtime has to bring along.
#pragma once

unsigned length_of(const char* text);
bool equal(const char* a, const char* b);
bool contains(const char* text, const char* part);
bool near_to(double a, double b); // to a millionth

void write_file(const char* name, const char* bytes, unsigned size);
// The file's first bytes, terminated; in a place that the next call uses again.
const char* read_file(const char* name);

// The program's exit code is the line of the first check that failed.
void check(bool condition, unsigned line);
#define CHECK(condition) check(condition, __LINE__)

void main_program();
