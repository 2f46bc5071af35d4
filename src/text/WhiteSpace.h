/// The two sets of white space that the program trims by; both hold the tab.
#pragma once
