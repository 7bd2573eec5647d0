# The calculator component, registered in the project's own Wine prefix.
step "Numbers" \
    "What is typed into a dimension field is an expression; the registered calculator works it out and writes the \
result as the field wants it."
run regsvr32 /s BvCalc.dll
run bvutil calc '1,5 + 2^10 / 3' 'w = 2.5; w * sin(30)' 'ans / 4'
run bvutil calc --form fraction --digits 16 '68.2 / 25.4' 'sqrt(2)'
run bvutil calc --form fixed --digits 2 --comma '199.99 * 1.19'
run bvutil calc '(3 + 4) / (2 - 2)' || [ "$ran_code" -ne 0 ]
